#include "platform/macos/KeychainKeyStore.h"

#include "platform/macos/CoreFoundationValues.h"

#include <Security/Security.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace varno {
namespace {

struct Found {
    OSStatus status = errSecSuccess;
    std::optional<QByteArray> secret; ///< nothing for what is not bytes
};

/// The attributes that name an item, and whatever else a call has to say.
CFOwned<CFDictionaryRef> itemOf(const KeyName& name, const CFEntries& more = {})
{
    const auto service = cfString(name.service);
    const auto account = cfString(name.account);
    CFEntries entries = {{kSecClass, kSecClassGenericPassword},
                         {kSecAttrService, service.get()},
                         {kSecAttrAccount, account.get()}};
    entries.insert(entries.end(), more.begin(), more.end());
    return cfDictionary(entries);
}

Found copyMatching(const KeyName& name, bool mayAsk)
{
    CFEntries wanted = {{kSecReturnData, kCFBooleanTrue}, {kSecMatchLimit, kSecMatchLimitOne}};
    if (!mayAsk)
        wanted.emplace_back(kSecUseAuthenticationUI, kSecUseAuthenticationUIFail);
    CFTypeRef result = nullptr;
    const OSStatus status = SecItemCopyMatching(itemOf(name, wanted).get(), &result);
    const CFOwned<CFTypeRef> owned(result);
    return {.status = status, .secret = bytesOf(result)};
}

void addItem(const KeyName& name, const QByteArray& secret)
{
    const auto data = cfData(secret);
    const auto item = itemOf(name, {{kSecValueData, data.get()},
                                    {kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}});
    SecItemAdd(item.get(), nullptr);
}

/// What `question` comes to, on a thread of its own; nothing if `stop` is asked for before, or if
/// there is no thread to be had.
template <typename Question>
auto answerTo(Question question, const std::stop_token& stop)
{
    using Answer = decltype(question());
    struct Exchange {
        std::mutex mutex;
        std::condition_variable_any answered;
        std::optional<Answer> answer;
    };
    const auto exchange = std::make_shared<Exchange>();
    try {
        std::thread([exchange, question = std::move(question)] {
            Answer answer = question();
            const std::scoped_lock lock(exchange->mutex);
            exchange->answer = std::move(answer);
            exchange->answered.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        return std::optional<Answer>();
    }
    std::unique_lock lock(exchange->mutex);
    exchange->answered.wait(lock, stop, [&] { return exchange->answer.has_value(); });
    return std::exchange(exchange->answer, std::nullopt);
}

} // namespace

void KeychainKeyStore::replace(const KeyName& name, const QByteArray& secret, std::stop_token stop)
{
    const auto replaceItem = [name, secret] {
        const OSStatus deleted = SecItemDelete(itemOf(name).get());
        if (deleted != errSecUserCanceled) // to go on would be to ask again
            addItem(name, secret);
        return deleted;
    };
    static_cast<void>(answerTo(replaceItem, stop));
}

void KeychainKeyStore::remove(const KeyName& name, std::stop_token stop)
{
    static_cast<void>(answerTo([name] { return SecItemDelete(itemOf(name).get()); }, stop));
}

std::optional<QByteArray> KeychainKeyStore::find(const KeyName& name, std::stop_token stop) const
{
    const auto found = answerTo([name] { return copyMatching(name, true); }, stop);
    return found && found->status == errSecSuccess ? found->secret : std::nullopt;
}

KeyGlance KeychainKeyStore::look(const KeyName& name, std::stop_token stop) const
{
    using State = KeyGlance::State;
    const auto found = answerTo([name] { return copyMatching(name, false); }, stop);
    if (!found)
        return {};
    switch (found->status) {
    case errSecSuccess:
        return found->secret ? KeyGlance{State::open, *found->secret} : KeyGlance{State::absent};
    case errSecItemNotFound:
        return {State::absent};
    case errSecInteractionNotAllowed:
    case errSecInteractionRequired:
    case errSecAuthFailed:
    case errSecUserCanceled:
        return {State::locked};
    default:
        return {};
    }
}

} // namespace varno

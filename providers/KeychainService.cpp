#include "providers/KeychainService.h"

#include "platform/Platform.h"

#include <QStringDecoder>

#include <utility>

namespace varno {
namespace {

std::optional<QString> textOf(const QByteArray& bytes)
{
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                    QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decode(bytes);
    return decode.hasError() ? std::nullopt : std::optional(text);
}

} // namespace

const KeychainService& KeychainService::shared()
{
    static const KeychainService service(systemKeyStore());
    return service;
}

KeychainService::KeychainService(KeyStore& store)
    : m_store(store)
{
}

void KeychainService::save(const QString& key, const QString& account,
                           const std::stop_token& stop) const
{
    m_store.replace({.service = service, .account = account}, key.toUtf8(), stop);
    changed(account);
}

std::optional<QString> KeychainService::load(const QString& account,
                                             const std::stop_token& stop) const
{
    return load(request(account), stop);
}

KeychainService::Request KeychainService::request(const QString& account) const
{
    const std::scoped_lock lock(m_mutex);
    std::weak_ptr<KeyRequest>& latest = m_requests[account];
    Request request = latest.lock();
    if (!request || request->isAnswered()) {
        request = std::make_shared<KeyRequest>(
            [&store = m_store, name = KeyName{.service = service, .account = account}](
                std::stop_token stop) { return store.find(name, std::move(stop)); });
        latest = request;
    }
    return request;
}

// By value: the key does not outlive the call. NOLINTNEXTLINE(performance-unnecessary-value-param)
std::optional<QString> KeychainService::load(Request request, const std::stop_token& stop)
{
    const auto bytes = request->wait(stop);
    return bytes ? textOf(*bytes) : std::nullopt;
}

void KeychainService::remove(const QString& account, const std::stop_token& stop) const
{
    m_store.remove({.service = service, .account = account}, stop);
    changed(account);
}

KeyPresence KeychainService::presence(const QString& account, const std::stop_token& stop) const
{
    const KeyGlance glance = m_store.look({.service = service, .account = account}, stop);
    switch (glance.state) {
    case KeyGlance::State::unreachable:
        return KeyPresence::unreachable;
    case KeyGlance::State::absent:
        return KeyPresence::absent;
    case KeyGlance::State::locked:
        return KeyPresence::present;
    case KeyGlance::State::open:
        break;
    }
    return textOf(glance.secret).value_or(QString()).isEmpty() ? KeyPresence::absent
                                                               : KeyPresence::present;
}

/// What is asked from now on must not be answered with the key of before.
void KeychainService::changed(const QString& account) const
{
    const std::scoped_lock lock(m_mutex);
    m_requests.erase(account);
}

} // namespace varno

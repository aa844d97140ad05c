#include "tests/macos/Imitation.h"

#include <algorithm>
#include <condition_variable>

const CFStringRef kSecClass = CFSTR("class");
const CFStringRef kSecClassGenericPassword = CFSTR("generic");
const CFStringRef kSecAttrService = CFSTR("service");
const CFStringRef kSecAttrAccount = CFSTR("account");
const CFStringRef kSecAttrAccessible = CFSTR("accessible");
const CFStringRef kSecAttrAccessibleAfterFirstUnlock = CFSTR("after first unlock");
const CFStringRef kSecValueData = CFSTR("data");
const CFStringRef kSecReturnData = CFSTR("return");
const CFStringRef kSecMatchLimit = CFSTR("limit");
const CFStringRef kSecMatchLimitOne = CFSTR("one");
const CFStringRef kSecUseAuthenticationUI = CFSTR("dialog");
const CFStringRef kSecUseAuthenticationUIFail = CFSTR("fail");

namespace {

using varno::imitation::described;
using varno::imitation::Keychain;
using varno::imitation::keychain;

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a service has a state
std::condition_variable answered;

QString nameOf(CFDictionaryRef query)
{
    return described(CFDictionaryGetValue(query, kSecAttrService)) + u'/' +
           described(CFDictionaryGetValue(query, kSecAttrAccount));
}

auto find(CFDictionaryRef query)
{
    return std::ranges::find(keychain().items, nameOf(query), &Keychain::Item::name);
}

/// What comes of a call that needs an unlocked keychain.
OSStatus opened(std::unique_lock<std::mutex>& lock, CFDictionaryRef query)
{
    if (keychain().failure != errSecSuccess || !keychain().isLocked)
        return keychain().failure;
    if (CFDictionaryGetValue(query, kSecUseAuthenticationUI) == kSecUseAuthenticationUIFail)
        return errSecInteractionNotAllowed;
    ++keychain().asked;
    if (keychain().user == Keychain::User::silent)
        answered.wait(lock, [] { return keychain().user != Keychain::User::silent; });
    return errSecUserCanceled;
}

std::unique_lock<std::mutex> begin(const char* call, CFDictionaryRef query)
{
    std::unique_lock lock(keychain().mutex);
    keychain().calls << QString::fromLatin1(call) + u' ' + described(query);
    return lock;
}

} // namespace

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef*)
{
    auto lock = begin("SecItemAdd", attributes);
    if (const OSStatus status = opened(lock, attributes))
        return status;
    if (find(attributes) != keychain().items.end())
        return errSecDuplicateItem;
    const CFTypeRef data = CFDictionaryGetValue(attributes, kSecValueData);
    keychain().items.push_back({.name = nameOf(attributes), .data = CFRetain(data)});
    return errSecSuccess;
}

OSStatus SecItemDelete(CFDictionaryRef query)
{
    auto lock = begin("SecItemDelete", query);
    if (find(query) == keychain().items.end())
        return errSecItemNotFound;
    if (const OSStatus status = opened(lock, query))
        return status;
    const auto item = find(query);
    CFRelease(item->data);
    keychain().items.erase(item);
    return errSecSuccess;
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result)
{
    auto lock = begin("SecItemCopyMatching", query);
    if (find(query) == keychain().items.end() && keychain().failure == errSecSuccess)
        return errSecItemNotFound;
    if (const OSStatus status = opened(lock, query))
        return status;
    const CFTypeRef data = find(query)->data;
    *result = data ? CFRetain(data) : nullptr;
    return errSecSuccess;
}

namespace varno::imitation {

Keychain& keychain()
{
    static Keychain only;
    return only;
}

void Keychain::answer()
{
    const std::scoped_lock lock(mutex);
    user = User::refuses;
    answered.notify_all();
}

void Keychain::reset()
{
    answer();
    const std::scoped_lock lock(mutex);
    for (const Item& item : items)
        if (item.data)
            CFRelease(item.data);
    items.clear();
    calls.clear();
    isLocked = false;
    failure = errSecSuccess;
}

} // namespace varno::imitation

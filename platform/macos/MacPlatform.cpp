#include "platform/Platform.h"
#include "platform/macos/CarbonHotKeyEvents.h"
#include "platform/macos/CarbonKeyboard.h"
#include "platform/macos/DefaultsPreferencesStore.h"
#include "platform/macos/KeychainKeyStore.h"
#include "platform/posix/CurlHttpSession.h"

namespace varno {

HotKeyEvents& systemHotKeyEvents()
{
    static CarbonHotKeyEvents events;
    return events;
}

HttpSession& systemHttpSession()
{
    static CurlHttpSession session;
    return session;
}

KeyStore& systemKeyStore()
{
    static KeychainKeyStore store;
    return store;
}

Keyboard& systemKeyboard()
{
    static CarbonKeyboard keyboard;
    return keyboard;
}

std::unique_ptr<PreferencesStore> makeSystemPreferencesStore()
{
    return std::make_unique<DefaultsPreferencesStore>();
}

} // namespace varno

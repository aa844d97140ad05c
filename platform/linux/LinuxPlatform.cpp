#include "platform/Platform.h"
#include "platform/linux/CurlHttpSession.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "platform/linux/SecretServiceKeyStore.h"
#include "platform/linux/SettingsPreferencesStore.h"
#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"

namespace varno {
namespace {

XcbConnection& keyboardConnection()
{
    static XcbConnection connection;
    return connection;
}

} // namespace

AnimationSetting& systemAnimationSetting()
{
    static PortalAnimationSetting setting;
    return setting;
}

HotKeyEvents& systemHotKeyEvents()
{
    static XcbHotKeyEvents events(keyboardConnection());
    return events;
}

HttpSession& systemHttpSession()
{
    static CurlHttpSession session;
    return session;
}

KeyStore& systemKeyStore()
{
    static SecretServiceKeyStore store;
    return store;
}

Keyboard& systemKeyboard()
{
    static XcbKeyboard keyboard(keyboardConnection());
    return keyboard;
}

std::unique_ptr<PreferencesStore> makeSystemPreferencesStore()
{
    return std::make_unique<SettingsPreferencesStore>(SettingsPreferencesStore::defaultPath());
}

} // namespace varno

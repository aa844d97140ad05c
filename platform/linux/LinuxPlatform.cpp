#include "platform/Platform.h"
#include "platform/linux/CurlHttpSession.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "platform/linux/SecretServiceKeyStore.h"
#include "platform/linux/SettingsPreferencesStore.h"

namespace varno {

AnimationSetting& systemAnimationSetting()
{
    static PortalAnimationSetting setting;
    return setting;
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

std::unique_ptr<PreferencesStore> makeSystemPreferencesStore()
{
    return std::make_unique<SettingsPreferencesStore>(SettingsPreferencesStore::defaultPath());
}

} // namespace varno

#pragma once

#include "platform/AnimationSetting.h"
#include "platform/HttpSession.h"
#include "platform/KeyStore.h"
#include "platform/PreferencesStore.h"

#include <memory>

namespace varno {

/// The backends of the system that Varno runs on. Each is made on first use and lives as long as
/// the process.
AnimationSetting& systemAnimationSetting();
HttpSession& systemHttpSession();
KeyStore& systemKeyStore();
std::unique_ptr<PreferencesStore> makeSystemPreferencesStore();

} // namespace varno

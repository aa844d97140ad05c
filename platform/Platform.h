#pragma once

#include "platform/AnimationSetting.h"
#include "platform/HotKeyEvents.h"
#include "platform/HttpSession.h"
#include "platform/KeyStore.h"
#include "platform/Keyboard.h"
#include "platform/PreferencesStore.h"

#include <memory>

class QIcon;

namespace varno {

class StatusItem;

/// The backends of the system that Varno runs on. Each is made on first use and lives as long as
/// the process.
AnimationSetting& systemAnimationSetting();
HotKeyEvents& systemHotKeyEvents();
HttpSession& systemHttpSession();
KeyStore& systemKeyStore();
Keyboard& systemKeyboard();
std::unique_ptr<PreferencesStore> makeSystemPreferencesStore();

/// `name` is what the icon is called. Needs an application with windows.
std::unique_ptr<StatusItem> makeSystemStatusItem(const QIcon& icon, const QString& name);

} // namespace varno

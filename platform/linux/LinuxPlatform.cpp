#include "platform/Platform.h"
#include "platform/linux/CompositorKeyboard.h"
#include "platform/linux/IniPreferencesStore.h"
#include "platform/linux/LoadedBackends.h"
#include "platform/linux/LoadedLayerShell.h"
#include "platform/linux/PlasmaShortcut.h"
#include "platform/linux/PortalAnimationSetting.h"
#include "platform/linux/PortalShortcutSession.h"
#include "platform/linux/WaylandSocket.h"
#include "platform/linux/XcbConnection.h"
#include "platform/linux/XcbHotKeyEvents.h"
#include "platform/linux/XcbKeyboard.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

XcbConnection& keyboardConnection()
{
    static XcbConnection connection;
    return connection;
}

/// There the X server beside it sees keys only while one of its own windows has the focus.
bool isWaylandSession()
{
    return qEnvironmentVariable("XDG_SESSION_TYPE") == "wayland"_L1 || hasWaylandCompositor();
}

/// Not where its service runs: any program of KDE's starts that, on every desktop.
bool isPlasma()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(u"KDE"_s);
}

std::unique_ptr<Keyboard> makeKeyboard()
{
    if (LayerShell* const layers = layerShell()) // the X server need not even run
        return std::make_unique<CompositorKeyboard>(*layers);
    return std::make_unique<XcbKeyboard>(keyboardConnection());
}

std::unique_ptr<HotKeyEvents> makeHotKeyEvents()
{
    if (!isWaylandSession())
        return std::make_unique<XcbHotKeyEvents>(keyboardConnection());
    if (isPlasma()) {
        static DesktopService plasma(PlasmaShortcut::service);
        return std::make_unique<DesktopHotKeyEvents>(plasma,
                                                     plasmaShortcuts(plasma, systemKeyboard()));
    }
    PortalConnection& portal = PortalConnection::shared();
    return std::make_unique<DesktopHotKeyEvents>(portal, portalShortcuts(portal, systemKeyboard()));
}

} // namespace

AnimationSetting& systemAnimationSetting()
{
    static PortalAnimationSetting setting;
    return setting;
}

HotKeyEvents& systemHotKeyEvents()
{
    static const std::unique_ptr<HotKeyEvents> events = makeHotKeyEvents();
    return *events;
}

HttpSession& systemHttpSession()
{
    static LoadedHttpSession session;
    return session;
}

KeyStore& systemKeyStore()
{
    static LoadedKeyStore store;
    return store;
}

Keyboard& systemKeyboard()
{
    static const std::unique_ptr<Keyboard> keyboard = makeKeyboard();
    return *keyboard;
}

std::unique_ptr<PreferencesStore> makeSystemPreferencesStore()
{
    return std::make_unique<IniPreferencesStore>(IniPreferencesStore::defaultPath());
}

} // namespace varno

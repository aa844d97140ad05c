#include "app/AppDelegate.h"

#include "app/AfterShowing.h"
#include "app/OpenShortcut.h"
#include "kit/RoundedShape.h"
#include "kit/Symbol.h"
#include "kit/Theme.h"
#include "platform/Platform.h"
#include "platform/WindowPlacement.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QPointer>
#include <QTimer>

#include <chrono>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

/// Until a start is over, for us and for a desktop that starts with us.
constexpr std::chrono::milliseconds startingTime(500);

/// The closed book on a ground of its own, since nobody tells whether the status area is dark.
QIcon statusImage()
{
    const QPalette colors = themePalette(AppTheme::cream);
    QIcon icon;
    for (const int side : {22, 48}) { // as status areas are high, and twice that
        QPixmap image(side, side);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        const QRectF ground(0, 0, side, side);
        fillRounded(painter, ground, side * 0.2, themeColor(colors, ColorRole::accent));
        const double margin = side * 0.14;
        drawSymbol(painter, Symbol::bookClosedFill,
                   ground.adjusted(margin, margin, -margin, -margin),
                   themeColor(colors, ColorRole::background));
        painter.end();
        icon.addPixmap(image);
    }
    return icon;
}

} // namespace

AppDelegate::AppDelegate(const AppViewModel::Dependencies& dependencies,
                         const KeychainService& keychain)
    : m_viewModel(dependencies)
    , m_keys(keychain)
{
}

void AppDelegate::applicationDidFinishLaunching()
{
    becomeAccessory();
    setupStatusItem();
    setupHotkey();
    QTimer::singleShot(startingTime, this, &AppDelegate::warmUp);
}

/// Has the history read, and draws what a panel shows, for nobody: the fonts, symbols and keymap
/// are loaded by then.
void AppDelegate::warmUp()
{
    m_viewModel.refreshHistory();
    if (m_panel)
        return;
    ContentView content(m_viewModel, m_keys, panelShortcut());
    setTheme(content, m_viewModel.theme());
    content.resize(VarnoPanel::firstSize);
    static_cast<void>(content.grab());
    static_cast<void>(panelShortcut().label());
}

void AppDelegate::prepareToQuit()
{
    KeyboardShortcuts::shared().removeAllHandlers();
    m_viewModel.prepareToQuit();
    m_keys.end();
}

void AppDelegate::setupStatusItem()
{
    m_statusItem = makeSystemStatusItem(statusImage(), u"Varno"_s);
    connect(m_statusItem.get(), &StatusItem::activated, this, &AppDelegate::toggleWindow);
}

/// Toggles the panel when the combination is released, later: not from within the event of the key.
void AppDelegate::setupHotkey()
{
    KeyboardShortcuts::shared().onKeyUp(openVarno(), [weak = QPointer(this)] {
        const UserAction action{.time = KeyboardShortcuts::shared().lastEventTime()};
        QMetaObject::invokeMethod(
            qApp, [weak, action] { weak ? weak->toggleWindow(action) : void(); },
            Qt::QueuedConnection);
    });
}

void AppDelegate::showWindow(const UserAction& action)
{
    if (!m_panel)
        m_panel = std::make_unique<VarnoPanel>(m_viewModel, m_keys, panelShortcut());
    m_panel->present(action);
    afterShowing(this, [this] { m_viewModel.refreshHistory(); });
}

void AppDelegate::toggleWindow(const UserAction& action)
{
    if (m_panel && m_panel->isVisible()) {
        m_panel->hide();
        acknowledge(action);
    } else {
        showWindow(action);
    }
}

} // namespace varno

#include "app/VarnoApp.h"

#include "app/AppDelegate.h"
#include "app/ApplicationService.h"
#include "platform/CoreDumps.h"
#include "platform/Platform.h"
#include "platform/TerminationSignals.h"
#include "platform/WindowPlacement.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"
#include "shortcuts/RecorderCocoa.h"

#include <QApplication>
#include <QPointer>

#include <cstdio>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

int fail(const char* sentence)
{
    std::fprintf(stderr, "%s\n", sentence);
    return 1;
}

/// The combination that opens the panel from anywhere, unless the user chose another: Option,
/// Command and F.
const KeyboardShortcuts::Name& openVarno()
{
    static const KeyboardShortcuts::Name name(
        u"openVarno"_s, KeyboardShortcuts::Shortcut(Key::f, Modifier::option | Modifier::command));
    return name;
}

PanelShortcut panelShortcut()
{
    return {
        .label =
            [] {
                const KeyboardShortcuts& shortcuts = KeyboardShortcuts::shared();
                const auto shortcut = shortcuts.getShortcut(openVarno());
                return shortcut ? shortcuts.description(*shortcut) : QString();
            },
        .makeRecorder = [] { return new RecorderCocoa(openVarno()); },
    };
}

/// Toggles the panel when the combination is released, later: not from within the event of the key.
void setupHotkey(AppDelegate& delegate)
{
    KeyboardShortcuts::shared().onKeyUp(openVarno(), [weak = QPointer(&delegate)] {
        const quint32 time = KeyboardShortcuts::shared().lastEventTime();
        QMetaObject::invokeMethod(
            qApp, [weak, time] { weak ? weak->toggleWindow(time) : void(); }, Qt::QueuedConnection);
    });
}

int runFirst(QApplication& application, ApplicationService& service)
{
    const std::unique_ptr<PreferencesStore> preferences = makeSystemPreferencesStore();
    HistoryStore history;
    AppDelegate delegate({.preferences = *preferences,
                          .history = history,
                          .claude = ClaudeService::shared(),
                          .gemini = GeminiService::shared()},
                         KeychainService::shared(), panelShortcut());
    QObject::connect(&service, &ApplicationService::showRequested, &delegate,
                     [&delegate] { delegate.showWindow(); });
    QObject::connect(&service, &ApplicationService::toggleRequested, &delegate,
                     [&delegate] { delegate.toggleWindow(); });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     &QCoreApplication::quit);
    delegate.applicationDidFinishLaunching();
    setupHotkey(delegate);
    const int status = QApplication::exec();
    KeyboardShortcuts::shared().removeAllHandlers();
    delegate.prepareToQuit();
    return status;
}

} // namespace

int VarnoApp::run(int argc, char** argv)
{
#ifdef NDEBUG
    disableCoreDumps(); // they would hold the keys that were in use
#endif
    if (!chooseDisplay())
        return fail("Varno needs a display, and there is none that it can reach.");
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"Varno"_s);
    QGuiApplication::setDesktopFileName(u"com.kelbrin.varno"_s);
    QApplication::setStyle(u"fusion"_s); // the one that takes all its colours from the palette
    QGuiApplication::setQuitOnLastWindowClosed(false);

    ApplicationService service;
    switch (service.claim()) {
    case ApplicationService::Claim::toggled:
        return 0;
    case ApplicationService::Claim::silent:
        return fail("Varno is running already, but does not answer.");
    case ApplicationService::Claim::mine:
        break;
    }
    return runFirst(application, service);
}

} // namespace varno

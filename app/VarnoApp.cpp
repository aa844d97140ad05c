#include "app/VarnoApp.h"

#include "app/ApplicationService.h"
#include "app/AtExit.h"
#include "platform/Platform.h"
#include "platform/ProcessSecrets.h"
#include "platform/TerminationSignals.h"
#include "platform/WindowPlacement.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"

#include <QApplication>
#include <QPixmapCache>

#include <cstdio>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

int fail(const QString& sentence)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    return 1;
}

class UsersOwn final : public Owners {
public:
    [[nodiscard]] AppViewModel::Dependencies dependencies() override
    {
        return {.preferences = *m_preferences,
                .history = m_history,
                .claude = ClaudeService::shared(),
                .gemini = GeminiService::shared()};
    }
    void started(AppDelegate& /*delegate*/) override {}
    void end() override
    {
        ClaudeService::shared().endCalls();
        GeminiService::shared().endCalls();
    }

private:
    std::unique_ptr<PreferencesStore> m_preferences = makeSystemPreferencesStore();
    HistoryStore m_history;
};

int live(QApplication& application, ApplicationService& service, Owners& owners)
{
    AppDelegate delegate(owners.dependencies(), KeychainService::shared());
    QObject::connect(&service, &ApplicationService::showRequested, &delegate,
                     [&delegate] { delegate.showWindow(); });
    QObject::connect(&service, &ApplicationService::toggleRequested, &delegate,
                     [&delegate] { delegate.toggleWindow(); });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     &QCoreApplication::quit);
    delegate.applicationDidFinishLaunching();
    owners.started(delegate);
    // Libraries take themselves down when the process exits: nothing may run with them by then.
    const auto end = [&delegate, &owners] {
        delegate.prepareToQuit();
        owners.end();
    };
    const AtExit ending(end);
    const int status = QApplication::exec();
    end();
    return status;
}

} // namespace

void VarnoApp::prepare()
{
    QCoreApplication::setApplicationName(u"Varno"_s);
    QGuiApplication::setDesktopFileName(u"com.kelbrin.varno"_s);
    QApplication::setStyle(u"fusion"_s); // the one that takes all its colours from the palette
    QPixmapCache::setCacheLimit(0);      // it would set a timer to empty itself
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

int VarnoApp::run(int argc, char** argv)
{
    return run(argc, argv, {.busName = u"com.kelbrin.varno"_s, .owners = [] {
                                return std::make_unique<UsersOwn>();
                            }});
}

int VarnoApp::run(int argc, char** argv, const Launch& launch)
{
    keepSecrets();
    if (!chooseDisplay())
        return fail(u"Varno needs a display, and there is none that it can reach."_s);
    QApplication application(argc, argv);
    prepare();

    ApplicationService service(launch.busName);
    switch (service.claim()) {
    case ApplicationService::Claim::toggled:
        return 0;
    case ApplicationService::Claim::silent:
        return fail(u"Varno is running already, but does not answer."_s);
    case ApplicationService::Claim::mine:
        break;
    }
    const auto owners = launch.owners();
    if (const auto* failure = std::get_if<Failure>(&owners))
        return fail(failure->description);
    return live(application, service, *std::get<std::unique_ptr<Owners>>(owners));
}

} // namespace varno

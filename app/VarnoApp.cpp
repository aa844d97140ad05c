#include "app/VarnoApp.h"

#include "app/ApplicationService.h"
#include "app/AtExit.h"
#include "app/CommandLine.h"
#include "app/Translation.h"
#include "kit/TextCuts.h"
#include "platform/Platform.h"
#include "platform/ProcessSecrets.h"
#include "platform/StatusItem.h"
#include "platform/TerminationSignals.h"
#include "platform/WindowPlacement.h"
#include "providers/ClaudeService.h"
#include "providers/GeminiService.h"

#include <QApplication>
#include <QPixmapCache>

#include <cstdio>
#include <optional>

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

/// First what is shown, then the panel that shows it.
void perform(const ApplicationService::Request& request, AppDelegate& delegate)
{
    using Action = ApplicationService::Action;
    AppViewModel& model = delegate.viewModel();
    switch (request.action) {
    case Action::quit:
        QCoreApplication::quit();
        return;
    case Action::toggle:
        delegate.toggleWindow(request.user);
        return;
    case Action::show:
        break;
    case Action::settings:
        model.setShowingSettings(true);
        break;
    case Action::newSearch:
        model.setShowingSettings(false);
        model.newSearch();
        break;
    case Action::search: // of a text that may come from a page, with its lines
        model.setShowingSettings(false);
        model.search(request.text.first(lengthWithin(request.text, longestSearch)).simplified());
        break;
    }
    delegate.showWindow(request.user);
}

/// What a first start does of itself.
void showIfDue(const LaunchContext& context, AppDelegate& delegate)
{
    using Panel = LaunchContext::Panel;
    const UserAction action = context.marks.action();
    if (context.panel == Panel::shown)
        delegate.showWindow(action);
    else if (context.panel == Panel::hidden)
        acknowledge(action);
    else
        askForStatusArea(delegate, [&delegate, action](bool isThere) {
            isThere ? acknowledge(action) : delegate.showWindow(action);
        });
}

int live(QApplication& application, ApplicationService& service, Owners& owners,
         const LaunchContext& context)
{
    AppDelegate delegate(owners.dependencies(), KeychainService::shared());
    QObject::connect(&service, &ApplicationService::requested, &delegate,
                     [&delegate](const auto& request) { perform(request, delegate); });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     &QCoreApplication::quit);
    delegate.applicationDidFinishLaunching();
    owners.started(delegate);
    onStartedAgain(delegate, [&delegate] { delegate.showWindow(); });
    showIfDue(context, delegate);
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
    if (const auto status = answerCommandLine(argc, argv))
        return *status;
    return run(argc, argv, {.busName = u"com.kelbrin.varno"_s, .owners = [] {
                                return std::make_unique<UsersOwn>();
                            }});
}

int VarnoApp::run(int argc, char** argv, const Launch& launch)
{
    keepSecrets();
    LaunchContext context = takeLaunchContext();
    std::optional<DisplayChoice> display(std::in_place);
    if (!display->hasDisplay()) {
        const QCoreApplication application(argc, argv); // to say so
        loadTranslation();
        return fail(tr("Varno needs a display, and there is none that it can reach."));
    }
    QApplication application(argc, argv);
    display.reset();
    prepare();
    loadTranslation();
    if (application.isSessionRestored())
        context.panel = LaunchContext::Panel::hidden;

    ApplicationService service(launch.busName);
    switch (service.claim(context)) {
    case ApplicationService::Claim::handedOver:
        return 0;
    case ApplicationService::Claim::silent:
        return fail(tr("Varno is running already, but does not answer."));
    case ApplicationService::Claim::mine:
        break;
    }
    const auto owners = launch.owners();
    if (const auto* failure = std::get_if<Failure>(&owners))
        return fail(failure->description);
    return live(application, service, *std::get<std::unique_ptr<Owners>>(owners), context);
}

} // namespace varno

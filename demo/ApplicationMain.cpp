#include "app/VarnoApp.h"
#include "demo/DemonstrationSetting.h"
#include "demo/EntryLibrary.h"
#include "demo/Invocation.h"
#include "demo/SessionBuses.h"

#include <QCoreApplication>

#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const char* const introduction =
    "A demonstration: the models are played by a stand-in on this machine, with a key ring and a\n"
    "history of its own.\n"
    "\n"
    "Alt+Super+F          shows and hides the panel, as the icon in the status area does\n"
    "Ctrl+,               settings\n"
    "Ctrl+F               find in the entry\n"
    "Ctrl+K               new search\n"
    "Alt+Left, Escape     a step back\n"
    "\n"
    "Ctrl+C here ends it.\n";

class Stage final : public Owners {
public:
    Stage(std::unique_ptr<DemonstrationSetting> setting, Invocation invocation)
        : m_setting(std::move(setting))
        , m_invocation(std::move(invocation))
    {
        // About as fast as a model writes, and a table of contents takes its time.
        m_setting->service().setScript({.pace = 60ms});
        m_setting->service().setTOCScript({.pace = 1500ms});
        // What the library holds stands among the recent searches, a click away.
        dependencies().preferences.setStringArray(preferenceKey::searchHistory,
                                                  EntryLibrary().titles());
    }

    [[nodiscard]] AppViewModel::Dependencies dependencies() override
    {
        return m_setting->dependencies();
    }

    void started(AppDelegate& delegate) override
    {
        std::fputs(introduction, stdout);
        std::fflush(stdout);
        delegate.viewModel().setAIModel(m_invocation.model);
        if (!m_invocation.query.isEmpty())
            delegate.viewModel().search(m_invocation.query);
        delegate.showWindow();
    }

    void end() override { m_setting->endCalls(); }

private:
    std::unique_ptr<DemonstrationSetting> m_setting;
    Invocation m_invocation;
};

int run(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto invocation = readInvocation(arguments);
    if (const auto* failure = std::get_if<Failure>(&invocation))
        return fail(failure->description, usageError);
    separateKeyRingFromDesktop();
    return VarnoApp::run(
        argc, argv,
        {.busName = u"com.kelbrin.varno.demonstration"_s,
         .owners = [&]() -> Result<std::unique_ptr<Owners>> {
             auto setting = DemonstrationSetting::open();
             if (const auto* failure = std::get_if<Failure>(&setting))
                 return *failure;
             return std::make_unique<Stage>(
                 std::get<std::unique_ptr<DemonstrationSetting>>(std::move(setting)),
                 std::get<Invocation>(invocation));
         }});
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    return varno::run(argc, argv);
}

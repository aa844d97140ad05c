#include "demo/DemonstrationSetting.h"
#include "demo/Invocation.h"
#include "demo/ReadingWindow.h"
#include "platform/TerminationSignals.h"

#include <QApplication>

#include <cstdio>

namespace varno {
namespace {

using namespace std::chrono_literals;

int run(const QApplication& application)
{
    QString error;
    const auto invocation = readInvocation(QApplication::arguments(), error);
    if (!invocation)
        return fail(error, usageError);
    const auto setting = DemonstrationSetting::open(error);
    if (!setting)
        return fail(error);
    // About as fast as a model writes, and a table of contents takes its time.
    setting->service().setScript({.pace = 60ms});
    setting->service().setTOCScript({.pace = 1500ms});
    setting->viewModel().setAIModel(invocation->model);

    std::printf("%s\n\n%s", qUtf8Printable(setting->introduction()),
                qUtf8Printable(ReadingWindow::keys()));
    std::fflush(stdout);
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     [] { QCoreApplication::exit(1); });
    ReadingWindow window(setting->viewModel());
    window.show();
    setting->viewModel().search(invocation->query);
    return QApplication::exec();
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    return varno::run(application);
}

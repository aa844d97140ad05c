#include "demo/Demonstration.h"
#include "demo/DemonstrationSetting.h"
#include "demo/Invocation.h"
#include "platform/TerminationSignals.h"

#include <QCoreApplication>

namespace varno {
namespace {

int run(const QCoreApplication& application)
{
    QString error;
    const auto invocation = readInvocation(QCoreApplication::arguments(), error);
    if (!invocation)
        return fail(error, usageError);
    const auto setting = DemonstrationSetting::open(error);
    if (!setting)
        return fail(error);
    setting->service().setScript({.pace = std::chrono::milliseconds(12)});
    setting->viewModel().setAIModel(invocation->model);

    QTextStream terminal(stdout);
    terminal << setting->introduction() << "\n\n";
    Demonstration demonstration(setting->viewModel(), setting->service(), terminal);
    QObject::connect(&demonstration, &Demonstration::finished, &application,
                     [](const std::optional<QString>& message) {
                         QCoreApplication::exit(message ? fail(*message) : 0);
                     });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     [] { QCoreApplication::exit(1); });
    demonstration.start(invocation->query);
    return QCoreApplication::exec();
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return varno::run(application);
}

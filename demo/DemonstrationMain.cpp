#include "demo/Demonstration.h"
#include "demo/DemonstrationSetting.h"
#include "demo/Invocation.h"
#include "platform/ProcessSecrets.h"
#include "platform/TerminationSignals.h"

#include <QCoreApplication>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

int run(const QCoreApplication& application)
{
    const auto read = readInvocation(QCoreApplication::arguments());
    if (const auto* failure = std::get_if<Failure>(&read))
        return fail(failure->description, usageError);
    const auto opened = DemonstrationSetting::open();
    if (const auto* failure = std::get_if<Failure>(&opened))
        return fail(failure->description);
    const auto& invocation = std::get<Invocation>(read);
    const auto& setting = std::get<std::unique_ptr<DemonstrationSetting>>(opened);
    setting->service().setScript({.pace = std::chrono::milliseconds(12)});
    AppViewModel model(setting->dependencies());
    model.setAIModel(invocation.model);

    QTextStream terminal(stdout);
    terminal << "A demonstration: " << details(model.aiModel()).displayName
             << " is played by a stand-in on this machine, with a key ring of its own.\n\n";
    Demonstration demonstration(model, setting->service(), terminal);
    QObject::connect(&demonstration, &Demonstration::finished, &application,
                     [](const std::optional<QString>& message) {
                         QCoreApplication::exit(message ? fail(*message) : 0);
                     });
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &application,
                     [] { QCoreApplication::exit(1); });
    const QString favourite = u"the history of the roman empire"_s;
    demonstration.start(invocation.query.isEmpty() ? favourite : invocation.query);
    return QCoreApplication::exec();
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    varno::keepSecrets();
    const QCoreApplication application(argc, argv);
    return varno::run(application);
}

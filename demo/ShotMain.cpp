#include "app/OpenShortcut.h"
#include "app/VarnoApp.h"
#include "app/VarnoPanel.h"
#include "demo/DemonstrationSetting.h"
#include "demo/EntryTour.h"
#include "demo/Invocation.h"
#include "demo/ScreenTour.h"
#include "platform/ProcessSecrets.h"
#include "platform/TerminationSignals.h"

#include <QApplication>

#include <cstdio>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

int run()
{
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || arguments.at(1).isEmpty())
        return fail(u"Usage: varno-demo-shots FOLDER"_s, usageError);
    const QDir folder(QDir(arguments.at(1)).absolutePath());
    if (!folder.mkpath(u"."_s))
        return fail(u"The folder “%1” cannot be created."_s.arg(folder.path()));

    const auto opened = DemonstrationSetting::open();
    if (const auto* failure = std::get_if<Failure>(&opened))
        return fail(failure->description);
    const auto& setting = std::get<std::unique_ptr<DemonstrationSetting>>(opened);
    AppViewModel model(setting->dependencies());
    KeychainTasks keys(KeychainService::shared());
    VarnoPanel panel(model, keys, panelShortcut());
    panel.present({});
    Camera camera(panel, folder);
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &panel,
                     [&camera] { camera.stop(); });
    if (!camera.prepare() || !ScreenTour(model, panel, camera).run() ||
        !EntryTour(model, setting->service(), panel, camera).run())
        return fail(camera.error());
    std::printf("%d pictures in %s\n", camera.pictureCount(), qUtf8Printable(folder.path()));
    return 0;
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    varno::keepSecrets();
    const QApplication application(argc, argv);
    varno::VarnoApp::prepare();
    return varno::run();
}

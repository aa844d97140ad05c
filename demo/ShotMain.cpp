#include "demo/DemonstrationSetting.h"
#include "demo/Invocation.h"
#include "demo/ReadingWindow.h"
#include "demo/ShotTour.h"
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

    QString error;
    const auto setting = DemonstrationSetting::open(error);
    if (!setting)
        return fail(error);
    ReadingWindow window(setting->viewModel());
    window.show();
    ShotTour tour(*setting, window, folder);
    const auto terminationSignals = TerminationSignals::install();
    QObject::connect(terminationSignals.get(), &TerminationSignals::received, &tour,
                     &ShotTour::stop);
    if (!tour.run())
        return fail(tour.error());
    std::printf("%d pictures in %s\n", tour.pictureCount(), qUtf8Printable(folder.path()));
    return 0;
}

} // namespace
} // namespace varno

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    return varno::run();
}

#include "app/CommandLine.h"

#include "app/Translation.h"

#include <QCoreApplication>

#include <cstdio>
#include <string_view>

namespace varno {
namespace {

constexpr int usageError = 2;

const char* const help = QT_TRANSLATE_NOOP(
    "varno::CommandLine",
    "Usage: varno [--help | --version]\n"
    "\n"
    "An encyclopedia that is written as you ask. Varno lives in the status area: a click on its\n"
    "icon, or Alt+Super+F in any application, opens and hides its panel. Starting it again does "
    "so\n"
    "too. varno(1) tells the rest.\n");
const char* const unknown = QT_TRANSLATE_NOOP(
    "varno::CommandLine", "varno: \"%1\" is unknown; --help tells what there is.");

QString translated(const char* text)
{
    return QCoreApplication::translate("varno::CommandLine", text);
}

} // namespace

std::optional<int> answerCommandLine(int argc, char** argv)
{
    if (argc < 2)
        return std::nullopt;
    const std::string_view option = argv[1];
    // A session manager brings back what ran when the user logged out.
    if (argc == 3 && option == "-session")
        return std::nullopt;
    if (argc == 2 && option == "--version") {
        std::puts("varno " VARNO_VERSION);
        return 0;
    }
    const QCoreApplication application(argc, argv);
    loadTranslation();
    if (argc == 2 && option == "--help") {
        std::fputs(qUtf8Printable(translated(help)), stdout);
        return 0;
    }
    const char* const first = option == "--help" || option == "--version" ? argv[2] : argv[1];
    const QString sentence = translated(unknown).arg(QString::fromLocal8Bit(first));
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    return usageError;
}

} // namespace varno

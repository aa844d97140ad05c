#include "app/CommandLine.h"

#include <cstdio>
#include <string_view>

namespace varno {
namespace {

constexpr int usageError = 2;

const char* const help =
    "Usage: varno [--help | --version]\n"
    "\n"
    "An encyclopedia that is written as you ask. Varno lives in the status area: a click on its\n"
    "icon, or Alt+Super+F in any application, opens and hides its panel. Starting it again does "
    "so\n"
    "too. varno(1) tells the rest.\n";

} // namespace

std::optional<int> answerCommandLine(int argc, const char* const* argv)
{
    if (argc < 2)
        return std::nullopt;
    const std::string_view option = argv[1];
    // A session manager brings back what ran when the user logged out.
    if (argc == 3 && option == "-session")
        return std::nullopt;
    if (argc == 2 && option == "--help") {
        std::fputs(help, stdout);
        return 0;
    }
    if (argc == 2 && option == "--version") {
        std::puts("varno " VARNO_VERSION);
        return 0;
    }
    const char* const unknown = option == "--help" || option == "--version" ? argv[2] : argv[1];
    std::fprintf(stderr, "varno: \"%s\" is unknown; --help tells what there is.\n", unknown);
    return usageError;
}

} // namespace varno

#include "tests/Test.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace varno {
namespace {

using Entries = std::map<std::string, TestEntry::Run>;

/// There before the first entry, whatever the order of the files.
Entries& entries()
{
    static Entries all;
    return all;
}

} // namespace

TestEntry::TestEntry(const char* name, Run run)
{
    const char* const colon = std::strrchr(name, ':');
    entries().emplace(colon ? colon + 1 : name, run);
}

} // namespace varno

/// `PROGRAM CLASS [ARGUMENT ...]` runs one test class, with the arguments of QtTest.
int main(int argc, char** argv)
{
    const auto entry = varno::entries().find(argc > 1 ? argv[1] : "");
    if (entry != varno::entries().end()) {
        argv[1] = argv[0];
        return entry->second(argc - 1, argv + 1);
    }
    std::fputs("The first argument is one of:\n", stderr);
    for (const auto& [name, run] : varno::entries())
        std::fprintf(stderr, "    %s\n", name.c_str());
    return 2;
}

#pragma once

#include "tests/Patience.h"

namespace varno {

/// Something that a test program runs when its first argument is `name`.
class TestEntry {
public:
    using Run = int (*)(int argc, char** argv);

    TestEntry(const char* name, Run run);
};

template <typename Application, typename Test>
int runTest(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    const Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace varno

/// In place of QTEST_MAIN and its like: several test classes are in one program. Once a file.
#define VARNO_TEST(Application, Test)                                                              \
    static const varno::TestEntry testEntry(#Test, varno::runTest<Application, Test>);

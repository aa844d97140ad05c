#pragma once

#include "tests/Patience.h"

#include <QDebug>

#include <initializer_list>
#include <tuple>

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

/// The rows of a table of cases.
template <typename... Columns>
using Rows = std::initializer_list<std::tuple<Columns...>>;

/// Says in which row of its table a test failed. What names the row may be any values:
///     for (const auto& [text, expected] : Rows<QString, int>{{u"a"_s, 1}, {u"bc"_s, 2}}) {
///         const InRow row(text);
class InRow {
public:
    template <typename... Values>
    explicit InRow(const Values&... values)
    {
        (QDebug(&m_name) << ... << values);
    }
    ~InRow()
    {
        if (QTest::currentTestFailed())
            qWarning("in the row %s", qPrintable(m_name.left(200)));
    }
    Q_DISABLE_COPY_MOVE(InRow)

private:
    QString m_name;
};

} // namespace varno

/// In place of QTEST_MAIN and its like: several test classes are in one program. Once a file.
#define VARNO_TEST(Application, Test)                                                              \
    static const varno::TestEntry testEntry(#Test, varno::runTest<Application, Test>);

// Only the files of test classes include this.
using namespace varno;
using namespace Qt::StringLiterals;

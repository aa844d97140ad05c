#pragma once

#include "tests/Patience.h"

#include <QDebug>

#include <initializer_list>
#include <tuple>

namespace varno {

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

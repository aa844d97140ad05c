#pragma once

#include <QDeadlineTimer>
#include <QTest>

namespace varno {

/// How long a test waits for what has to come before it gives up, in milliseconds: sanitizers, and
/// a machine that is busy with other things.
inline constexpr int patience = 60000;

} // namespace varno

// In place of QtTest's own, which give up after five seconds and in some
// versions do not compile without warnings.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define VARNO_AWAIT(condition)                                                                     \
    for (const QDeadlineTimer deadline(varno::patience);                                           \
         !(condition) && !deadline.hasExpired() && !QTest::currentTestFailed();)                   \
    QTest::qWait(10)
#define QTRY_VERIFY2(condition, message)                                                           \
    do {                                                                                           \
        VARNO_AWAIT(condition);                                                                    \
        QVERIFY2(condition, message);                                                              \
    } while (false)
#define QTRY_VERIFY(condition)                                                                     \
    do {                                                                                           \
        VARNO_AWAIT(condition);                                                                    \
        QVERIFY(condition);                                                                        \
    } while (false)
#define QTRY_COMPARE(value, expected)                                                              \
    do {                                                                                           \
        VARNO_AWAIT((value) == (expected));                                                        \
        QCOMPARE(value, expected);                                                                 \
    } while (false)

#include "platform/TerminationSignals.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace varno;

namespace {

/// What became of a child that sends itself `number` after `prepare`.
template <typename Prepare>
int statusOfChild(int number, Prepare prepare)
{
    const pid_t child = ::fork();
    if (child == 0) {
        prepare();
        std::raise(number);
        ::_exit(0);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child ? status : -1;
}

} // namespace

class TerminationSignalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAnnounced_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void isAnnounced()
    {
        QFETCH(int, number);
        const auto termination = TerminationSignals::install();
        QSignalSpy spy(termination.get(), &TerminationSignals::received);
        for (int count = 1; count <= 2; ++count) {
            std::raise(number);
            QCOMPARE(spy.size(), count - 1); // only in the event loop
            QTRY_COMPARE(spy.size(), count);
        }
    }

    void defaultReturns_data() { isAnnounced_data(); }

    void defaultReturns()
    {
        QFETCH(int, number);
        const int survived = statusOfChild(
            number, [] { static_cast<void>(TerminationSignals::install().release()); });
        QVERIFY(WIFEXITED(survived));
        const int ended = statusOfChild(number, [] { TerminationSignals::install().reset(); });
        QVERIFY(WIFSIGNALED(ended));
        QCOMPARE(WTERMSIG(ended), number);
    }
};

VARNO_TEST(QCoreApplication, TerminationSignalsTest)
#include "TerminationSignalsTest.moc"

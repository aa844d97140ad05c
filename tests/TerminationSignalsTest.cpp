#include "platform/TerminationSignals.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

using namespace varno;

namespace {

/// What became of a child that sends itself `number`; `prepare` runs before that.
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

private slots:
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
        for (int count = 1; count <= 3; ++count) {
            std::raise(number);
            QCOMPARE(spy.size(), count - 1); // only in the event loop
            QTRY_COMPARE(spy.size(), count);
        }
    }

    void aBurstIsAnnounced()
    {
        const auto termination = TerminationSignals::install();
        QSignalSpy spy(termination.get(), &TerminationSignals::received);
        for (int i = 0; i < 100'000; ++i) // more than a pipe holds
            std::raise(SIGTERM);
        QTRY_VERIFY(!spy.isEmpty());
        QCoreApplication::processEvents();
        spy.clear();
        std::raise(SIGINT);
        QTRY_VERIFY(!spy.isEmpty());
    }

    void isAnnouncedInTheThreadThatInstalled()
    {
        const auto termination = TerminationSignals::install();
        QThread* announcedIn = nullptr;
        connect(
            termination.get(), &TerminationSignals::received, this,
            [&] { announcedIn = QThread::currentThread(); }, Qt::DirectConnection);
        std::jthread([] { std::raise(SIGTERM); }).join();
        QTRY_COMPARE(announcedIn, thread());
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

    void canBeInstalledAgain()
    {
        for (int i = 0; i < 2000; ++i) // as many as there are descriptors, if it lost them
            QVERIFY(TerminationSignals::install());
        const auto termination = TerminationSignals::install();
        QSignalSpy spy(termination.get(), &TerminationSignals::received);
        std::raise(SIGHUP);
        QTRY_COMPARE(spy.size(), 1);
    }

    void otherSignalsKeepTheirHandling()
    {
        const int status = statusOfChild(
            SIGUSR1, [] { static_cast<void>(TerminationSignals::install().release()); });
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGUSR1);
    }
};

QTEST_GUILESS_MAIN(TerminationSignalsTest)
#include "TerminationSignalsTest.moc"

#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "tests/PortalRecorder.h"
#include "tests/PrivateBus.h"
#include "tests/ProgramFixture.h"
#include "tests/Test.h"

#include <QDateTime>

namespace {

/// A page of today.
Session sessionOf(const QString& query)
{
    constexpr qint64 referenceEpoch = 978307200; // 2001-01-01 in seconds since 1970
    Page page;
    page.id = QUuid::createUuid();
    page.title = query;
    page.content = u"Written."_s;
    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = query;
    session.push(page);
    session.createdAt = static_cast<double>(QDateTime::currentSecsSinceEpoch() - referenceEpoch);
    return session;
}

} // namespace

/// How the program starts and ends, what it survives, and what it leaves behind.
class ProgramLifeTest : public ProgramFixture {
    Q_OBJECT

private:
    /// Has it show the older one of the two searches that are in its history.
    void showOlderSearch(XDesktop& desktop)
    {
        QDir().mkpath(QFileInfo(m_program->historyPath()).path());
        QVERIFY(writeFileAtomically(m_program->historyPath(),
                                    encodeSessions({sessionOf(u"onyx"_s), sessionOf(u"opal"_s)})));
        QVERIFY(m_program->start());
        QVERIFY(m_program->activate());
        QTRY_VERIFY(m_program->hasKeyboard());
        search(desktop, "opal");
    }
    /// What was on show has been saved again, as the newest.
    void verifySaved()
    {
        QVERIFY(m_program->hasSearched("opal"));
        const auto file = readFile(m_program->historyPath(), largestHistory);
        const auto* json = std::get_if<QByteArray>(&file);
        QVERIFY(json && json->indexOf("opal") < json->indexOf("onyx"));
        QVERIFY(json->contains("opal"));
    }

private Q_SLOTS:
    void secondStartToggles()
    {
        QVERIFY(m_program->start());
        for (const bool shown : {true, false, true}) {
            RunningProgram second(*m_desktop);
            second.launchBeside(*m_program);
            QCOMPARE(second.waitForEnd(), 0);
            QCOMPARE(second.console(), QByteArray());
            QTRY_COMPARE(m_program->isShown(), shown);
        }
        QTRY_VERIFY(m_program->hasKeyboard());
    }

    void secondStartGivesUp()
    {
        QVERIFY(m_program->start());
        ::kill(static_cast<pid_t>(m_program->id()), SIGSTOP);
        RunningProgram second(*m_desktop);
        second.launchBeside(*m_program);
        QCOMPARE(second.waitForEnd(), 1);
        QVERIFY2(second.console().contains("does not answer"), second.console());
        ::kill(static_cast<pid_t>(m_program->id()), SIGCONT);
        QVERIFY(m_program->settles());
    }

    void bus()
    {
        QVERIFY(m_program->start());
        // The empty action is the activation of the whole.
        for (const auto& [action, shown] : Rows<QString, bool>{{u""_s, true},
                                                               {u"toggle"_s, false},
                                                               {u"toggle"_s, true},
                                                               {u"Toggle"_s, true},
                                                               {u"quit"_s, true}}) {
            const InRow row(action);
            QVERIFY(action.isEmpty() ? m_program->activate() : m_program->activateAction(action));
            QVERIFY(m_program->settles());
            QTRY_COMPARE(m_program->isShown(), shown);
        }
    }

    void waylandSessionsAskThePortal()
    {
        PortalRecorder portal(QDBusConnection::SessionBus);
        QVERIFY(portal.isRegistered());
        QVERIFY(m_program->start());
        QVERIFY(!m_desktop->grab());
        QVERIFY(!portal.calls().contains(u"CreateSession"_s));
        QCOMPARE(m_program->end(), 0);

        m_program->set("XDG_SESSION_TYPE", u"wayland"_s);
        QVERIFY(m_program->start());
        QTRY_VERIFY(portal.calls().contains(u"CreateSession"_s));
        QVERIFY(m_desktop->grab());
        QTRY_COMPARE(QString::fromUtf8(m_program->console()),
                     u"Error registering hotkey ⌥⌘F\n"_s); // as the portal refused
        QCOMPARE(m_program->end(), 0);
        m_program.reset();
    }

    void needsADisplay()
    {
        m_program->unset("DISPLAY");
        m_program->unset("WAYLAND_DISPLAY");
        m_program->launch();
        QCOMPARE(m_program->waitForEnd(), 1);
        const QByteArray sentence = m_program->console();
        QVERIFY2(sentence.contains("display") && sentence.count('\n') == 1, sentence);
        m_program.reset();
    }

    void signalsEndIt()
    {
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            const InRow row(number);
            replaceProgram(*m_desktop);
            showOlderSearch(*m_desktop);
            QCOMPARE(m_program->end(number), 0);
            QCOMPARE(m_program->console(), QByteArray());
            verifySaved();
        }
    }

    void screenGone()
    {
        QProcess server; // a screen without a window manager
        server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1200x900x24"_s,
                                 u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        QVERIFY(server.waitForReadyRead());
        const QByteArray screen = ':' + server.readAllStandardOutput().trimmed();
        XDesktop desktop(screen);
        replaceProgram(desktop);
        m_program->set("DISPLAY", QString::fromLatin1(screen));
        m_program->set("ASAN_OPTIONS", u"detect_leaks=0"_s); // the toolkit just exits
        showOlderSearch(desktop);
        server.kill();
        server.waitForFinished();
        QVERIFY2(m_program->waitForEnd() >= 0, m_program->console());
        verifySaved();
        m_program.reset();
    }

    void busGone()
    {
        PrivateBus bus;
        replaceProgram(*m_desktop, bus.address());
        QVERIFY(m_program->start());
        bus.end();
        showPanel();
        search(*m_desktop, "opal");
        hidePanel();
        QCOMPARE(m_program->end(), 0);
        m_program.reset();
    }

    void dumpsNoCore()
    {
#ifndef NDEBUG
        QSKIP("A build for development does");
#endif
        QVERIFY(m_program->start());
        QFile limits(u"/proc/%1/limits"_s.arg(m_program->id()));
        QVERIFY(limits.open(QIODevice::ReadOnly));
        QVERIFY(limits.readAll().simplified().contains("Max core file size 0 0 "));
    }
};

VARNO_TEST(QCoreApplication, ProgramLifeTest)
#include "ProgramLifeTest.moc"

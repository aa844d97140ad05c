#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "tests/PortalRecorder.h"
#include "tests/PrivateBus.h"
#include "tests/ProgramFixture.h"
#include "tests/StatusHost.h"
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
        QFile leftover(m_program->historyPath() + u".unfinished-1"_s);
        QVERIFY(leftover.open(QIODevice::WriteOnly));
        QVERIFY(m_program->start());
        QVERIFY(m_program->activate());
        QTRY_VERIFY(m_program->hasKeyboard());
        QTRY_VERIFY(!leftover.exists()); // gone when the history is read, which a search waits for
        search(desktop, "opal");
        QVERIFY(m_program->settles());
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
    void firstStartShowsSomething()
    {
        for (const auto& [wanted, hasArea, shown] : Rows<QString, bool, bool>{
                 {u""_s, false, true},
                 {u""_s, true, false},
                 {u"shown"_s, true, true},
                 {u"hidden"_s, false, false},
             }) {
            const InRow row(wanted, hasArea);
            const auto area = hasArea ? std::make_unique<StatusHost>() : nullptr;
            replaceProgram(*m_desktop);
            m_program->set("VARNO_PANEL", wanted);
            QVERIFY(m_program->start());
            QVERIFY(m_program->settles());
            QTRY_COMPARE(m_program->isShown(), shown);
            QCOMPARE(m_program->end(), 0);
        }
    }

    void firstStartShowsSomethingWithoutABus()
    {
        m_program->unset("VARNO_PANEL");
        takeBusAway();
        m_program->launch();
        QTRY_VERIFY(m_program->isShown());
    }

    void secondStartTogglesOrShows()
    {
        QVERIFY(m_program->start());
        for (const auto& [wanted, shown] : Rows<QString, bool>{{u""_s, true},
                                                               {u""_s, false},
                                                               {u"hidden"_s, false},
                                                               {u"shown"_s, true},
                                                               {u"shown"_s, true},
                                                               {u"hidden"_s, true}}) {
            const InRow row(wanted);
            RunningProgram second(*m_desktop);
            second.set("VARNO_PANEL", wanted);
            second.set("DESKTOP_STARTUP_ID", u"test_TIME1"_s);
            second.launchBeside(*m_program);
            QCOMPARE(second.waitForEnd(), 0);
            QCOMPARE(second.console(), QByteArray());
            QTRY_COMPARE(m_program->isShown(), shown);
        }
        QTRY_VERIFY(m_program->hasKeyboard());
        QCOMPARE(m_desktop->property(m_program->panel(), "_NET_WM_USER_TIME"), QList<quint32>{1});
    }

    void secondStartGivesUp()
    {
        QVERIFY(m_program->start());
        ::kill(static_cast<pid_t>(m_program->id()), SIGSTOP);
        RunningProgram second(*m_desktop);
        second.unset("VARNO_PANEL");
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
        for (const auto& [action, parameter, shown] : Rows<QString, QVariantList, bool>{
                 {u""_s, {}, true},
                 {u"toggle"_s, {}, false},
                 {u"new-search"_s, {}, true},
                 {u"toggle"_s, {}, false},
                 {u"settings"_s, {}, true},
                 {u"Toggle"_s, {}, true},
                 {u"toggle"_s, {}, false},
                 {u"search"_s, {u" opal\nand onyx"_s}, true},
             }) {
            const InRow row(action);
            QVERIFY(action.isEmpty() ? m_program->activate()
                                     : m_program->activateAction(action, parameter));
            QVERIFY(m_program->settles());
            QTRY_COMPARE(m_program->isShown(), shown);
        }
        QTRY_VERIFY(m_program->hasSearched("opal and onyx"));
    }

    void answersItsCommandLine()
    {
        for (const auto& [arguments, status, answer] : Rows<QStringList, int, QByteArray>{
                 {{u"--version"_s}, 0, "varno "},
                 {{u"--help"_s}, 0, "Usage: varno "},
                 {{u"--platform"_s, u"offscreen"_s}, 2, "\"--platform\" is unknown"},
                 {{u"--help"_s, u"-x"_s}, 2, "\"-x\" is unknown"},
                 {{u""_s}, 2, "\"\" is unknown"},
                 {{u"-session"_s, u"1_2"_s}, 1, "display"},
             }) {
            const InRow row(arguments);
            RunningProgram asked(*m_desktop);
            asked.unset("DISPLAY");
            asked.arguments = arguments;
            asked.launch();
            QCOMPARE(asked.waitForEnd(), status);
            QVERIFY(asked.console().contains(answer));
            QVERIFY(status == 0 || asked.console().count('\n') == 1);
        }
        m_program.reset();
    }

    void speaksTheLanguageOfItsUser()
    {
        const QTemporaryDir installed;
        const QString translations = installed.filePath(u"share/varno/translations"_s);
        QVERIFY(QDir(installed.path()).mkpath(u"bin"_s) && QDir().mkpath(translations));
        QVERIFY(QFile::copy(QFINDTESTDATA("data/translations/varno_he.qm"),
                            translations + u"/varno_he.qm"_s));
        for (const auto& [languages, answer] : Rows<QString, QByteArray>{
                 {u"fr:he"_s, "צריך מסך"}, {u"en_GB:he"_s, "needs a display"}}) {
            const InRow row(languages);
            RunningProgram asked(*m_desktop);
            asked.path = installed.filePath(u"bin/varno"_s);
            QFile::copy(QString::fromUtf8(VARNO), asked.path);
            asked.unset("DISPLAY");
            asked.unset("LC_ALL");
            asked.set("LANG", u"he_IL.UTF-8"_s);
            asked.set("LC_CTYPE", u"C.UTF-8"_s);
            asked.set("LANGUAGE", languages);
            asked.launch();
            QCOMPARE(asked.waitForEnd(), 1);
            QVERIFY(asked.console().contains(answer));
        }
        m_program.reset();
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

    void endsInOrder()
    {
        const auto typed = [this](quint8 modifier) {
            m_desktop->typeWith(modifier, pcKey::q);
            return m_program->waitForEnd();
        };
        for (const auto& [way, end] : Rows<QString, std::function<int()>>{
                 {u"SIGTERM"_s, [&] { return m_program->end(SIGTERM); }},
                 {u"SIGINT"_s, [&] { return m_program->end(SIGINT); }},
                 {u"SIGHUP"_s, [&] { return m_program->end(SIGHUP); }},
                 {u"Ctrl+Q"_s, [&] { return typed(pcKey::control); }},
                 {u"Super+Q"_s, [&] { return typed(pcKey::super); }},
                 {u"the bus"_s, [&] {
                      return m_program->activateAction(u"quit"_s) ? m_program->waitForEnd() : -1;
                  }}}) {
            const InRow row(way);
            replaceProgram(*m_desktop);
            showOlderSearch(*m_desktop);
            QCOMPARE(end(), 0);
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
        m_program->arguments = {u"-c"_s, u"ulimit -c unlimited; cd; exec \"$0\""_s,
                                m_program->path};
        m_program->path = u"/bin/sh"_s;
        QVERIFY(m_program->start());
        QVERIFY(m_program->end(SIGSEGV) < 0);
        QCOMPARE(QDir(m_program->home()).entryList({u"core*"_s}), QStringList());
        m_program.reset();
    }
};

VARNO_TEST(QCoreApplication, ProgramLifeTest)
#include "ProgramLifeTest.moc"

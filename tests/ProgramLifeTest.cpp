#include "core/HistoryStore.h"
#include "tests/RunningProgram.h"

#include <QDateTime>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

Session writtenSession(const QString& query)
{
    Page root;
    root.id = QUuid::createUuid();
    root.title = query;
    root.content = u"Written."_s;
    root.entryType = EntryType::definition;
    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = query;
    session.push(root);
    constexpr qint64 referenceEpoch = 978307200; // 2001-01-01 in seconds since 1970
    session.createdAt = static_cast<double>(QDateTime::currentSecsSinceEpoch() - referenceEpoch);
    return session;
}

void writeHistory(const QString& path, const QStringList& queries)
{
    QDir().mkpath(QFileInfo(path).path());
    HistoryStore history(path);
    for (auto query = queries.crbegin(); query != queries.crend(); ++query)
        history.put(writtenSession(*query));
}

QStringList readHistory(const QString& path)
{
    QStringList queries;
    HistoryStore history(path);
    const QList<Session> sessions = history.sessions().sessions();
    for (const Session& session : sessions)
        queries.append(session.rootQuery);
    return queries;
}

/// A screen without a window manager, gone when the test wants it.
struct ScreenOfItsOwn {
    ScreenOfItsOwn()
    {
        process.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1200x900x24"_s,
                                  u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        if (process.waitForReadyRead())
            name = u":"_s + QString::fromLatin1(process.readAllStandardOutput()).trimmed();
    }
    void end()
    {
        process.kill();
        process.waitForFinished();
    }

    QProcess process;
    QString name;
};

/// A bus with nothing on it, gone when the test wants it.
struct BusOfItsOwn {
    BusOfItsOwn()
    {
        process.start(u"dbus-daemon"_s,
                      {u"--nofork"_s, u"--print-address"_s,
                       u"--config-file=" QT_TESTCASE_SOURCEDIR "/../scripts/session-bus.conf"_s});
        if (process.waitForReadyRead())
            address = QString::fromLatin1(process.readAllStandardOutput()).trimmed();
    }
    void end()
    {
        process.kill();
        process.waitForFinished();
    }

    QProcess process;
    QString address;
};

} // namespace

/// How the program starts and ends, what it survives, and what it leaves behind.
class ProgramLifeTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<XDesktop> m_desktop;
    std::unique_ptr<RunningProgram> m_program;

    void search(XDesktop& desktop, const QByteArray& query)
    {
        desktop.type(query);
        desktop.type(pcKey::enter);
        QTRY_VERIFY(m_program->hasSearched(query));
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void secondStartToggles();
    void secondStartGivesUp();
    void oneOfTwoRemains();
    void bus_data();
    void bus();
    void shortcutOfAnother();
    void needsADisplay();
    void signalsEndIt_data();
    void signalsEndIt();
    void screenGone();
    void busGone();
    void dumpsNoCore();
};

void ProgramLifeTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("There is no X server: Xvfb and openbox are not installed");
}

void ProgramLifeTest::init()
{
    m_desktop = std::make_unique<XDesktop>();
    m_program = std::make_unique<RunningProgram>(*m_desktop);
}

void ProgramLifeTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
}

void ProgramLifeTest::secondStartToggles()
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
    QCOMPARE(m_program->end(), 0);
    QCOMPARE(m_program->console(), QByteArray());
}

void ProgramLifeTest::secondStartGivesUp()
{
    QVERIFY(m_program->start());
    ::kill(static_cast<pid_t>(m_program->id()), SIGSTOP);
    RunningProgram second(*m_desktop);
    second.launchBeside(*m_program);
    QCOMPARE(second.waitForEnd(), 1);
    QVERIFY2(second.console().contains("does not answer"), second.console());
    ::kill(static_cast<pid_t>(m_program->id()), SIGCONT);
    QVERIFY(m_program->settles());
    QCOMPARE(m_program->end(), 0);
}

void ProgramLifeTest::oneOfTwoRemains()
{
    for (int time = 0; time < 3; ++time) {
        RunningProgram first(*m_desktop);
        RunningProgram second(*m_desktop);
        first.launch();
        second.launchBeside(first);
        QTRY_VERIFY(first.isShown() || second.isShown());
        RunningProgram& remaining = first.isShown() ? first : second;
        RunningProgram& other = first.isShown() ? second : first;
        QCOMPARE(other.waitForEnd(), 0);
        QVERIFY(remaining.settles());
        QVERIFY(remaining.isRunning());
        QVERIFY(remaining.isShown());
        QCOMPARE(remaining.end(), 0);
        QCOMPARE(first.console() + second.console(), QByteArray());
    }
}

void ProgramLifeTest::bus_data()
{
    QTest::addColumn<QStringList>("actions"); // "" is the activation of the whole
    QTest::addColumn<bool>("shown");
    QTest::newRow("activated") << QStringList{u""_s} << true;
    QTest::newRow("activated again") << QStringList{u""_s, u""_s} << true;
    QTest::newRow("toggled") << QStringList{u"toggle"_s} << true;
    QTest::newRow("activated and toggled") << QStringList{u""_s, u"toggle"_s} << false;
    QTest::newRow("toggled twice") << QStringList{u"toggle"_s, u"toggle"_s} << false;
    QTest::newRow("something else") << QStringList{u"Toggle"_s, u"quit"_s} << false;
}

void ProgramLifeTest::bus()
{
    QFETCH(const QStringList, actions);
    QFETCH(const bool, shown);
    QVERIFY(m_program->start());
    for (const QString& action : actions)
        QVERIFY(action.isEmpty() ? m_program->activate() : m_program->activateAction(action));
    QVERIFY(m_program->settles());
    QTRY_COMPARE(m_program->isShown(), shown);
    QCOMPARE(m_program->end(), 0);
}

void ProgramLifeTest::shortcutOfAnother()
{
    QTRY_VERIFY(m_desktop->grabShortcut()); // once the program before is gone
    QVERIFY(m_program->start());
    QTRY_COMPARE(QString::fromUtf8(m_program->console()), u"Error registering hotkey ⌥⌘F\n"_s);
    m_desktop->typeShortcut();
    QVERIFY(m_program->settles());
    QVERIFY(!m_program->isShown());
    QVERIFY(m_program->activate());
    QTRY_VERIFY(m_program->hasKeyboard());
    QCOMPARE(m_program->end(), 0);
}

void ProgramLifeTest::needsADisplay()
{
    m_program->unset("DISPLAY");
    m_program->unset("WAYLAND_DISPLAY");
    m_program->launch();
    QCOMPARE(m_program->waitForEnd(), 1);
    const QByteArray sentence = m_program->console();
    QVERIFY2(sentence.contains("display") && sentence.endsWith(".\n") && sentence.count('.') == 1 &&
                 sentence.count('\n') == 1,
             sentence);
}

void ProgramLifeTest::signalsEndIt_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void ProgramLifeTest::signalsEndIt()
{
    QFETCH(const int, number);
    writeHistory(m_program->historyPath(), {u"onyx"_s, u"opal"_s});
    QVERIFY(m_program->start());
    m_desktop->typeShortcut();
    QTRY_VERIFY(m_program->hasKeyboard());
    search(*m_desktop, "opal");
    QCOMPARE(m_program->end(number), 0);
    QCOMPARE(m_program->console(), QByteArray());
    // What was on show has been saved again, as the newest.
    QCOMPARE(readHistory(m_program->historyPath()), QStringList({u"opal"_s, u"onyx"_s}));
    QVERIFY(m_program->hasSearched("opal"));
}

void ProgramLifeTest::screenGone()
{
    ScreenOfItsOwn screen;
    QVERIFY(!screen.name.isEmpty());
    XDesktop desktop(screen.name.toLatin1());
    m_program = std::make_unique<RunningProgram>(desktop);
    m_program->set("DISPLAY", screen.name);
    m_program->set("ASAN_OPTIONS", u"detect_leaks=0"_s); // the toolkit just exits
    writeHistory(m_program->historyPath(), {u"onyx"_s, u"opal"_s});
    QVERIFY(m_program->start());
    QVERIFY(m_program->activate());
    QTRY_VERIFY(m_program->hasKeyboard());
    search(desktop, "opal");
    screen.end();
    const int status = m_program->waitForEnd();
    QVERIFY2(status >= 0, m_program->console());
    QVERIFY(m_program->hasSearched("opal"));
    QCOMPARE(readHistory(m_program->historyPath()), QStringList({u"opal"_s, u"onyx"_s}));
}

void ProgramLifeTest::busGone()
{
    BusOfItsOwn bus;
    QVERIFY(!bus.address.isEmpty());
    m_program = std::make_unique<RunningProgram>(*m_desktop, bus.address);
    QVERIFY(m_program->start());
    bus.end();
    for (const char* const query : {"opal", "onyx"}) {
        m_desktop->typeShortcut();
        QTRY_VERIFY(m_program->hasKeyboard());
        m_desktop->type(QByteArray(query));
        m_desktop->type(pcKey::enter);
        QTRY_VERIFY(m_program->hasSearched("opal"));
        m_desktop->typeShortcut();
        QTRY_VERIFY(!m_program->isShown());
        QVERIFY(m_program->isRunning());
    }
    QCOMPARE(m_program->end(), 0);
}

void ProgramLifeTest::dumpsNoCore()
{
#ifndef NDEBUG
    QSKIP("A build for development does");
#endif
    QVERIFY(m_program->start());
    QFile limits(u"/proc/%1/limits"_s.arg(m_program->id()));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    const QByteArray text = limits.readAll().simplified();
    QVERIFY2(text.contains("Max core file size 0 0 "), text);
    QCOMPARE(m_program->end(), 0);
}

VARNO_TEST(QCoreApplication, ProgramLifeTest)
#include "ProgramLifeTest.moc"

#include "providers/KeychainService.h"
#include "tests/RunningProgram.h"

#include <QTcpServer>
#include <QTcpSocket>

using namespace varno;
using namespace Qt::StringLiterals;

/// What the program makes of the preferences that it finds, and of the keys in the key ring.
class ProgramSettingsTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<XDesktop> m_desktop;
    std::unique_ptr<RunningProgram> m_program;
    QHash<QByteArray, QByteArray> m_pictures; ///< of the settings screen, by the preferences

    void openSettings()
    {
        QVERIFY(m_program->activate());
        QTRY_VERIFY(m_program->hasKeyboard());
        m_desktop->typeWith(pcKey::control, pcKey::comma);
        QVERIFY(m_program->settles());
    }

    /// The settings screen of a program that starts with these preferences, and ends.
    QByteArray settingsPicture(const QByteArray& preferences)
    {
        m_program = std::make_unique<RunningProgram>(*m_desktop);
        m_program->setPreferences(preferences);
        if (!m_program->start())
            return {};
        openSettings();
        const QByteArray picture = m_program->restingPicture();
        return m_program->end() == 0 ? picture : QByteArray();
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void nonsenseInPreferences_data();
    void nonsenseInPreferences();
    void keepsKeysToItself_data();
    void keepsKeysToItself();
};

void ProgramSettingsTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("There is no X server: Xvfb and openbox are not installed");
}

void ProgramSettingsTest::init()
{
    m_desktop = std::make_unique<XDesktop>();
    m_program = std::make_unique<RunningProgram>(*m_desktop);
}

void ProgramSettingsTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
    const KeychainService& keychain = KeychainService::shared();
    keychain.remove(keychain.anthropicAccount);
    keychain.remove(keychain.geminiAccount);
}

void ProgramSettingsTest::nonsenseInPreferences_data()
{
    QTest::addColumn<QByteArray>("preferences");
    QTest::addColumn<QByteArray>("meaning"); // other preferences that come to the same
    QTest::addColumn<bool>("same");
    const QByteArray cleared = "[General]\nKeyboardShortcuts_openVarno=false\n";
    QTest::newRow("other values") << QByteArray("[General]\ntheme=dark\n") << QByteArray() << false;
    QTest::newRow("no text") << QByteArray("\0\xff\xfe[[[\n=\n\"", 11) << QByteArray() << true;
    QTest::newRow("a single quote")
        << QByteArray("[General]\ntheme=\"dark\n") << QByteArray() << true;
    QTest::newRow("unknown words")
        << QByteArray("[General]\ntheme=plaid\naiModel=abacus\nfontSize=gigantic\n"
                      "webSearchEnabled=perhaps\nsearchHistory=@Point(1 2)\n")
        << QByteArray() << true;
    QTest::newRow("other types") << QByteArray(
                                        "[General]\ntheme=dark, amber\naiModel=@Point(1 2)\n"
                                        "fontSize=@ByteArray(large)\nwebSearchEnabled=true, true\n")
                                 << QByteArray() << true;
    QTest::newRow("no shortcut") << QByteArray("[General]\nKeyboardShortcuts_openVarno=banana\n")
                                 << cleared << true;
    QTest::newRow("half a shortcut")
        << QByteArray(
               "[General]\nKeyboardShortcuts_openVarno=\"{\\\"carbonKeyCode\\\":\\\"x\\\"}\"\n")
        << cleared << true;
}

void ProgramSettingsTest::nonsenseInPreferences()
{
    QFETCH(const QByteArray, preferences);
    QFETCH(const QByteArray, meaning);
    QFETCH(const bool, same);
    QByteArray& expected = m_pictures[meaning];
    if (expected.isEmpty())
        expected = settingsPicture(meaning);
    QVERIFY(!expected.isEmpty());
    const QByteArray picture = settingsPicture(preferences);
    QVERIFY(!picture.isEmpty());
    QCOMPARE(picture == expected, same);
    QCOMPARE(m_program->console(), QByteArray());
}

void ProgramSettingsTest::keepsKeysToItself_data()
{
    QTest::addColumn<QString>("account");
    QTest::addColumn<QByteArray>("model");
    const KeychainService& keychain = KeychainService::shared();
    QTest::newRow("Anthropic") << keychain.anthropicAccount << QByteArray("claude-sonnet-5");
    QTest::newRow("Gemini") << keychain.geminiAccount << QByteArray("gemini-3.6-flash");
}

/// A request carries the key, and fails.
void ProgramSettingsTest::keepsKeysToItself()
{
    QFETCH(const QString, account);
    QFETCH(const QByteArray, model);
    const QString key = u"key-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
    const KeychainService& keychain = KeychainService::shared();
    keychain.save(key, account);
    QCOMPARE(keychain.load(account), std::optional(key));
    QTcpServer proxy;
    QVERIFY(proxy.listen(QHostAddress::LocalHost));
    int requests = 0;
    QObject::connect(&proxy, &QTcpServer::newConnection, &proxy, [&] {
        while (QTcpSocket* request = proxy.nextPendingConnection()) {
            ++requests;
            request->close();
        }
    });
    m_program->set("https_proxy", u"http://127.0.0.1:%1"_s.arg(proxy.serverPort()));
    m_program->setPreferences("[General]\naiModel=" + model + "\n");
    const QString sessionKeys = m_program->home() + u"/session-keys"_s;
    m_program->set("SSLKEYLOGFILE", sessionKeys);
    QVERIFY(m_program->start());
    openSettings();
    QVERIFY(!m_program->restingPicture().isEmpty());
    m_desktop->type(pcKey::escape);
    m_desktop->type("opal");
    m_desktop->type(pcKey::enter);
    QTRY_VERIFY(m_program->hasSearched("opal"));
    QTRY_VERIFY(requests > 0);
    QVERIFY(!m_program->restingPicture().isEmpty()); // it says that it failed
    QCOMPARE(m_program->end(), 0);
    QVERIFY2(!m_program->console().contains(key.toUtf8()), m_program->console());
    QCOMPARE(m_program->filesWith(key.toUtf8()), QStringList());
    QCOMPARE(m_program->filesWith("searchHistory=opal").size(), 1);
    QVERIFY(!QFile::exists(sessionKeys));
}

VARNO_TEST(QCoreApplication, ProgramSettingsTest)
#include "ProgramSettingsTest.moc"

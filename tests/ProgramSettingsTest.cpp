#include "providers/KeychainService.h"
#include "tests/FileContents.h"
#include "tests/ProgramFixture.h"
#include "tests/Test.h"

#include <QTcpServer>
#include <QTcpSocket>

/// What the program makes of what it finds: keys in the key ring, its own modules.
class ProgramSettingsTest : public ProgramFixture {
    Q_OBJECT

private:
    /// Starts it with a key in the key ring and searches; its request carries the key, and fails.
    void searchInVain(
        const QString& account, const QString& key, const std::function<void()>& started = [] {})
    {
        KeychainService::shared().save(key, account);
        QTcpServer proxy;
        QVERIFY(proxy.listen(QHostAddress::LocalHost));
        int requests = 0;
        connect(&proxy, &QTcpServer::newConnection, &proxy, [&] {
            while (QTcpSocket* const request = proxy.nextPendingConnection()) {
                ++requests;
                request->close();
            }
        });
        m_program->set("https_proxy", u"http://127.0.0.1:%1"_s.arg(proxy.serverPort()));
        QVERIFY(m_program->start());
        started();
        openSettings(); // where the key may be shown
        QVERIFY(!m_program->restingPicture().isEmpty());
        m_desktop->type(pcKey::escape);
        search(*m_desktop, "opal");
        QTRY_VERIFY2(requests > 0, m_program->console());
        QVERIFY(!m_program->restingPicture().isEmpty()); // it says that it failed
        QCOMPARE(m_program->end(), 0);
    }

private Q_SLOTS:
    void linksOpenInTheEnvironmentOfTheUser()
    {
        const QString browser = m_program->home() + u"/xdg-open"_s;
        setContents(browser, "#!/bin/sh\n"
                             "echo \"$1 ${QT_QPA_PLATFORM-unset} $(ulimit -Hc)\" >~/opened\n");
        QVERIFY(QFile::setPermissions(browser, QFile::ReadOwner | QFile::ExeOwner));
        m_program->set("PATH", m_program->home() + u':' + qEnvironmentVariable("PATH"));
        QVERIFY(m_program->start());
        openSettings();
        for (int steps = 0; steps < 4; ++steps) // from “Done” to the first link
            m_desktop->type(pcKey::tab);
        m_desktop->type(pcKey::enter);
        QProcess shell;
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"ulimit -Hc"_s});
        QVERIFY(shell.waitForFinished());
        const QByteArray limit = shell.readAll();
        QTRY_COMPARE(contents(m_program->home() + u"/opened"_s),
                     "https://console.anthropic.com/settings/keys unset " + limit);
    }

    void cleanup()
    {
        ProgramFixture::cleanup();
        const KeychainService& keychain = KeychainService::shared();
        keychain.remove(keychain.anthropicAccount);
        keychain.remove(keychain.geminiAccount);
    }

    void keepsKeysToItself()
    {
        const KeychainService& keychain = KeychainService::shared();
        for (const auto& [account, model] :
             {std::pair(keychain.anthropicAccount, "claude-sonnet-5"),
              std::pair(keychain.geminiAccount, "gemini-3.6-flash")}) {
            const InRow row(account);
            const QString key = u"key-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
            replaceProgram(*m_desktop);
            m_program->setPreferences("[General]\naiModel=" + QByteArray(model) + '\n');
            const QString sessionKeys = m_program->home() + u"/session-keys"_s;
            m_program->set("SSLKEYLOGFILE", sessionKeys);
            searchInVain(account, key);
            QVERIFY2(!m_program->console().contains(key.toUtf8()), m_program->console());
            QCOMPARE(m_program->filesWith(key.toUtf8()), QStringList());
            QCOMPARE(m_program->filesWith("searchHistory=opal").size(), 1);
            QVERIFY(!QFile::exists(sessionKeys));
        }
    }

    /// Its modules are where it looks for them, and what was built is not in its reach. It goes on
    /// when what was installed is removed.
    void worksWhereItIsInstalled()
    {
        QTemporaryDir prefix;
        QProcess install;
        install.start(
            QString::fromUtf8(VARNO_CMAKE),
            {u"--install"_s, QString::fromUtf8(VARNO_BUILD), u"--prefix"_s, prefix.path()});
        QVERIFY(install.waitForFinished());
        QCOMPARE(install.exitCode(), 0);
        m_program->path = prefix.filePath(u"bin/varno"_s);
        searchInVain(KeychainService::shared().anthropicAccount, u"a key"_s,
                     [&prefix] { QVERIFY(prefix.remove()); });
    }
};

VARNO_TEST(QCoreApplication, ProgramSettingsTest)
#include "ProgramSettingsTest.moc"

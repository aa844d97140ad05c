#include "platform/Platform.h"
#include "providers/KeychainService.h"
#include "tests/TestMain.h"

#include <QProcess>
#include <QRegularExpression>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

struct Run {
    int status = -1;
    QString output;
    QString errors;
};

Run run(const QStringList& arguments,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QString::fromUtf8(VARNO_DEMO), arguments);
    if (!process.waitForFinished(60000))
        process.kill();
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            .output = QString::fromUtf8(process.readAllStandardOutput()),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/// The demonstration in its own process, with a real key ring.
class DemonstrationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        const KeychainService& keychain = KeychainService::shared();
        keychain.remove(keychain.anthropicAccount);
        keychain.remove(keychain.geminiAccount);
    }

    void shows_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("pattern"); // what the output holds, in this order
        QTest::newRow("no query") << QStringList() << u"THE HISTORY OF THE ROMAN EMPIRE.*"_s;
        QTest::newRow("article") << QStringList({u"the history of the roman empire"_s})
                                 << u"Claude Sonnet 5.*THE HISTORY OF THE ROMAN EMPIRE.*## .*"
                                    "CONTENTS\n  1\\. From Republic to Empire.*SEE ALSO.*"
                                    "→ opening the section “From Republic to Empire”.*"
                                    "FROM REPUBLIC TO EMPIRE.*SEE ALSO.*"
                                    "← back to “The History Of The Roman Empire”.* 0 requests.*"
                                    "reopened, 0 requests made"_s;
        QTest::newRow("short answer, other provider")
            << QStringList({u" Black HOLES "_s, u"gemini"_s})
            << u"Gemini 3.6 Flash.*BLACK HOLES.*SEE ALSO.*reopened, 0 requests made"_s;
        QTest::newRow("definition, other model")
            << QStringList({u"palimpsest"_s, u"claude-haiku-4-5"_s})
            << u"Claude Haiku 4.5.*PALIMPSEST.*SEE ALSO.*reopened, 0 requests made"_s;
        QTest::newRow("unknown topic") << QStringList({u"the invention of the \"teapot\" lid"_s})
                                       << u"library.*reopened, 0 requests made"_s;
    }
    void shows()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, pattern);
        const Run result = run(arguments);
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const QRegularExpression expected(pattern, QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(expected.match(result.output).hasMatch(), qPrintable(result.output));
        for (const auto hidden : {"SEE_ALSO_JSON"_L1, "entry>"_L1, "demonstration-key"_L1})
            QVERIFY(!result.output.contains(hidden));
    }

    void refuses_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("too many") << QStringList({u"rome"_s, u"gemini"_s, u"please"_s});
        QTest::newRow("unknown model") << QStringList({u"rome"_s, u"abacus"_s});
    }
    void refuses()
    {
        QFETCH(QStringList, arguments);
        const Run result = run(arguments);
        QCOMPARE(result.status, 2);
        QVERIFY(result.errors.contains(u"gemini-3.6-flash"_s));
    }

    void leavesTheKeysOfAUserAlone()
    {
        const KeychainService& keychain = KeychainService::shared();
        keychain.save(u"a user's own"_s, keychain.geminiAccount);
        const Run result = run({u"palimpsest"_s});
        QCOMPARE(result.status, 1);
        QVERIFY(result.errors.contains(u"make demo"_s));
        QCOMPARE(keychain.load(keychain.geminiAccount), u"a user's own"_s);
        QVERIFY(!keychain.load(keychain.anthropicAccount));
    }

    void endsInGoodOrderWhenTold()
    {
        QProcess process;
        process.start(QString::fromUtf8(VARNO_DEMO), {u"the history of the roman empire"_s});
        QString output;
        QTRY_VERIFY(
            (output += QString::fromUtf8(process.readAllStandardOutput())).contains(u"AD 117"_s));
        process.terminate(); // while text is arriving
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(!process.readAllStandardOutput().contains("CONTENTS"));
    }

    void saysWhenThereIsNoKeyRing()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent"_s);
        const Run result = run({u"palimpsest"_s}, environment);
        QCOMPARE(result.status, 1);
        QVERIFY(result.errors.contains(u"key ring"_s));
    }
};

VARNO_TEST(QCoreApplication, DemonstrationTest)
#include "DemonstrationTest.moc"

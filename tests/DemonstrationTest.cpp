#include "demo/StandInService.h"
#include "platform/Platform.h"
#include "providers/KeychainService.h"
#include "tests/ProgramFixture.h"
#include "tests/Test.h"

#include <QRegularExpression>

namespace {

struct Run {
    int status = -1;
    QString output;
    QString errors;
};

Run run(const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromUtf8(VARNO_DEMO), arguments);
    if (!process.waitForFinished(patience))
        process.kill();
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            .output = QString::fromUtf8(process.readAllStandardOutput()),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/// The demonstrations in processes of their own, with a real key ring, and what they play with.
class DemonstrationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        const KeychainService& keychain = KeychainService::shared();
        keychain.remove(keychain.anthropicAccount);
        keychain.remove(keychain.geminiAccount);
    }

    void shows()
    {
        for (const auto& [arguments, pattern] : Rows<QStringList, QString>{
                 {{u"the history of the roman empire"_s},
                  u"Claude Sonnet 5.*THE HISTORY OF THE ROMAN EMPIRE.*## .*"
                  "CONTENTS\n  1\\. From Republic to Empire.*SEE ALSO.*"
                  "→ opening the section “From Republic to Empire”.*"
                  "FROM REPUBLIC TO EMPIRE.*SEE ALSO.*"
                  "← back to “The History Of The Roman Empire”.* 0 requests.*"
                  "reopened, 0 requests made"_s},
                 {{u" Black HOLES "_s, u"gemini"_s},
                  u"Gemini 3.6 Flash.*BLACK HOLES.*SEE ALSO.*reopened, 0 requests made"_s},
                 {{u"the invention of the \"teapot\" lid"_s}, u"library.*"_s}}) {
            const InRow row(arguments);
            const Run result = run(arguments);
            QCOMPARE(result.errors, QString());
            QCOMPARE(result.status, 0);
            const QRegularExpression expected(pattern,
                                              QRegularExpression::DotMatchesEverythingOption);
            QVERIFY2(expected.match(result.output).hasMatch(), qPrintable(result.output));
            for (const auto hidden : {"SEE_ALSO_JSON"_L1, "entry>"_L1, "demonstration-key"_L1})
                QVERIFY(!result.output.contains(hidden));
            cleanup();
        }
    }

    void refuses()
    {
        const KeychainService& keychain = KeychainService::shared();
        const Run unknownModel = run({u"rome"_s, u"abacus"_s});
        QCOMPARE(unknownModel.status, 2);
        QVERIFY(unknownModel.errors.contains(u"gemini-3.6-flash"_s));
        keychain.save(u"a user's own"_s, keychain.geminiAccount);
        const Run withAUsersKey = run({u"palimpsest"_s});
        QCOMPARE(withAUsersKey.status, 1);
        QVERIFY(withAUsersKey.errors.contains(u"make demo"_s));
        QCOMPARE(keychain.load(keychain.geminiAccount), u"a user's own"_s);
        QVERIFY(!keychain.load(keychain.anthropicAccount));
    }

    void applicationWritesAnEntry()
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            QSKIP("There is no X server: Xvfb and openbox are not installed");
        XDesktop desktop;
        RunningProgram program(desktop);
        program.path = QString::fromUtf8(VARNO_DEMO_APPLICATION);
        program.arguments = QStringList{u"palimpsest"_s};
        program.set("TMPDIR", program.home()); // of its stores
        program.unset("VARNO_DESKTOP_BUS");
        program.busName += u".demonstration"_s;
        QVERIFY2(program.start(), program.console());
        QTRY_VERIFY(program.hasKeyboard());
        QVERIFY(!program.restingPicture().isEmpty()); // all of it has come
        desktop.type(pcKey::escape);                  // which saves it
        QTRY_COMPARE(program.filesWith("traces of its past through the present").size(), 1);
        QCOMPARE(program.end(), 0);
        QVERIFY2(program.console().endsWith("Ctrl+C here ends it.\n"), program.console());
        QCOMPARE(program.filesWith("palimpsest"), QStringList());
    }

    void standInListensOnLoopbackOnly()
    {
        for (const QString& address : {u"0.0.0.0"_s, u"::"_s, u"127.0.0.1.example.org"_s, u""_s}) {
            const InRow row(address);
            QVERIFY(std::holds_alternative<Failure>(StandInService::start({.address = address})));
        }
    }
};

VARNO_TEST(QCoreApplication, DemonstrationTest)
#include "DemonstrationTest.moc"

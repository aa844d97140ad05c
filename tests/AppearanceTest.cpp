#include "core/Appearance.h"

#include "core/AIModel.h"

#include <QTest>

using namespace varno;
using namespace Qt::StringLiterals;

class AppearanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void colorFromText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<int>>("rgb");
        const QList<int> brown = {44, 24, 16};
        const QList<int> black = {0, 0, 0};
        QTest::newRow("plain") << u"2C1810"_s << brown;
        QTest::newRow("with sign") << u"#2C1810"_s << brown;
        QTest::newRow("lower case, blanks") << u" #2c1810 \n"_s << brown;
        QTest::newRow("eight digits") << u"FF2C1810"_s << brown;
        QTest::newRow("no hexadecimal digits") << u"zzzzzz"_s << black;
        QTest::newRow("partly") << u"2C18ZZ"_s << black;
        QTest::newRow("too long") << u"112C1810112C1810112C1810"_s << black;
        QTest::newRow("nothing") << QString() << black;
        QTest::newRow("signs alone") << u"##"_s << black;
    }
    void colorFromText()
    {
        QFETCH(QString, text);
        const RgbColor color = hex(text);
        QTEST(QList<int>({color.red, color.green, color.blue}), "rgb");
    }

    void palette_data()
    {
        QTest::addColumn<ColorRole>("role");
        QTest::addColumn<QList<int>>("cream");
        QTest::addColumn<QList<int>>("amber");
        QTest::addColumn<QList<int>>("dark");
        using L = QList<int>;
        QTest::newRow("background")
            << ColorRole::background << L{245, 236, 215} << L{232, 213, 163} << L{42, 34, 24};
        QTest::newRow("surface") << ColorRole::surface << L{237, 224, 196} << L{217, 196, 128}
                                 << L{30, 24, 16};
        QTest::newRow("border") << ColorRole::border << L{196, 168, 130} << L{160, 128, 64}
                                << L{90, 72, 48};
        QTest::newRow("text") << ColorRole::text << L{44, 24, 16} << L{44, 24, 16}
                              << L{232, 213, 163};
        QTest::newRow("accent") << ColorRole::accent << L{45, 80, 22} << L{45, 80, 22}
                                << L{143, 190, 90};
    }
    void palette()
    {
        QFETCH(ColorRole, role);
        const auto rgb = [&](AppTheme theme) {
            const RgbColor found = color(role, theme);
            return QList<int>{found.red, found.green, found.blue};
        };
        QTEST(rgb(AppTheme::cream), "cream");
        QTEST(rgb(AppTheme::amber), "amber");
        QTEST(rgb(AppTheme::dark), "dark");
    }

    void storedStrings()
    {
        QCOMPARE(fromRawValue<AIModel>(u"claude-opus-4-8"), AIModel::opus);
        QCOMPARE(fromRawValue<AIModel>(u"gemini-3.6-flash"), AIModel::geminiFlash);
        QVERIFY(!fromRawValue<AIModel>(u"opus"));
        QVERIFY(!fromRawValue<FontSize>(u"Large"));
        QCOMPARE(rawValue(AIModel::haiku), u"claude-haiku-4-5"_s);
        for (const auto& known : RawValues<AIModel>::cases)
            QCOMPARE(details(known.value).provider == Provider::google,
                     known.value == AIModel::geminiFlash);
        QCOMPARE(pointSize(FontSize::large), 19);
    }
};

VARNO_TEST(QCoreApplication, AppearanceTest)
#include "AppearanceTest.moc"

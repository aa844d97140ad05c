#include "core/Appearance.h"

#include "core/AIModel.h"
#include "tests/Test.h"

class AppearanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void colorFromText()
    {
        constexpr RgbColor brown = {44, 24, 16};
        for (const auto& [text, color] :
             Rows<QStringView, RgbColor>{{u"2C1810", brown},
                                         {u" #2c1810 \n", brown},
                                         {u"FF2C1810", brown},
                                         {u"2C18ZZ", {}},
                                         {u"112C1810112C1810112C1810", {}},
                                         {u"##", {}}}) {
            const InRow row(text);
            QCOMPARE(hex(text), color);
        }
        QCOMPARE(color(ColorRole::background, AppTheme::cream), (RgbColor{245, 236, 215}));
        QCOMPARE(color(ColorRole::border, AppTheme::amber), (RgbColor{160, 128, 64}));
        QCOMPARE(color(ColorRole::accent, AppTheme::dark), (RgbColor{143, 190, 90}));
    }

    void storedStrings()
    {
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

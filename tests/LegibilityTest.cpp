#include "kit/Rule.h"
#include "kit/Theme.h"
#include "reader/ReadingColumn.h"
#include "tests/Test.h"

#include <QVBoxLayout>

#include <cmath>
#include <list>

namespace {

/// As WCAG 2 defines it, of an sRGB colour.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor over(const QColor& ink, const QColor& ground)
{
    const auto mixed = [&](float from, float to) { return from + (to - from) * ink.alphaF(); };
    return QColor::fromRgbF(mixed(ground.redF(), ink.redF()), mixed(ground.greenF(), ink.greenF()),
                            mixed(ground.blueF(), ink.blueF()));
}

double contrast(const QColor& ink, const QColor& ground)
{
    const auto [dark, light] = std::minmax({luminance(over(ink, ground)), luminance(ground)});
    return (light + 0.05) / (dark + 0.05);
}

} // namespace

/// What there is to see can be read, in every theme and in every direction.
class LegibilityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void contrastOfColors()
    {
        constexpr double ofText = 4.5;
        constexpr double ofOthers = 3;
        for (const AppTheme theme : {AppTheme::cream, AppTheme::amber, AppTheme::dark}) {
            const QPalette colors = themePalette(theme);
            const QColor page = themeColor(colors, ColorRole::background);
            const QColor bar = themeColor(colors, ColorRole::surface);
            for (const auto& [what, ink, ground, least] : Rows<QString, QColor, QColor, double>{
                     {u"no results"_s, standardColor(colors, StandardColor::red, 0.7), bar, ofText},
                     {u"warning"_s, standardColor(colors, StandardColor::orange), page, ofText},
                     {u"stored"_s, standardColor(colors, StandardColor::green, 0.8), page, ofText},
                     {u"placeholder"_s, colors.color(QPalette::PlaceholderText), bar, ofText},
                     {u"selection"_s, colors.color(QPalette::HighlightedText),
                      over(colors.color(QPalette::Highlight), page), ofText},
                     {u"menu"_s, colors.color(QPalette::ButtonText), colors.color(QPalette::Button),
                      ofText},
                     {u"ring"_s, themeColor(colors, ColorRole::accent, 0.8), bar, ofOthers},
                     {u"ring"_s, themeColor(colors, ColorRole::accent, 0.8), page, ofOthers}}) {
                const InRow row(what, static_cast<int>(theme), ink, ground);
                QVERIFY2(contrast(ink, ground) >= least,
                         qPrintable(QString::number(contrast(ink, ground))));
            }
        }
    }

    /// On a screen of 175 percent, wherever they are.
    void linesAreEqual()
    {
        QWidget window;
        const QColor ground = Qt::white;
        window.setPalette(QPalette(ground));
        std::list<Rule> rules(8);
        auto* lines = new QVBoxLayout(&window);
        lines->setSpacing(2);
        for (Rule& rule : rules)
            lines->addWidget(&rule);
        const QImage image = window.grab().toImage();
        QCOMPARE(image.devicePixelRatio(), 1.75);
        QString column; // of the picture: lines and what is between them
        for (int y = 0; y < image.height(); ++y)
            column += image.pixelColor(image.width() / 2, y) == ground ? u' ' : u'#';
        QCOMPARE(column.simplified(), u"# "_s.repeated(8).trimmed());
    }

    void pageTurns()
    {
        ReadingColumn column;
        column.setTitle(u"Lighthouse"_s);
        const auto isMirrored = [&] { return column.widget()->isRightToLeft(); };
        QVERIFY(!isMirrored());
        for (const QChar letter : u"מגדלור הוא מגדל"_s)
            column.appendText(QString(letter));
        QVERIFY(isMirrored());
        column.openPage(u"A tower"_s, {});
        QVERIFY(!isMirrored());
    }

    /// What has a side has the one of its page, also where its own letters run the other way.
    void marksOnTheSideOfThePage()
    {
        MarkdownContentView view;
        view.setText(u"- Tides\n\n- גאות\n\n> Tides\n\nTides גאות"_s);
        const auto isOnTheRight = [&view] {
            QList<bool> sides;
            for (QTextBlock row = view.document().begin(); row.isValid(); row = row.next())
                sides.append(row.blockFormat().rightMargin() > 0);
            return sides;
        };
        QCOMPARE(isOnTheRight(), QList({false, true, false, false}));
        view.setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(isOnTheRight(), QList({true, true, true, false}));
        QCOMPARE(view.document().lastBlock().textDirection(), Qt::RightToLeft);
        QCOMPARE(view.blockAt(0), 0);
    }
};

VARNO_TEST(QApplication, LegibilityTest)
#include "LegibilityTest.moc"

#include "kit/InputLimit.h"
#include "kit/Layout.h"
#include "kit/PlainButton.h"
#include "kit/Rule.h"
#include "kit/SymbolView.h"
#include "kit/TextCuts.h"
#include "kit/TextField.h"
#include "kit/ThemedText.h"
#include "tests/Test.h"

#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <QSignalSpy>
#include <QToolTip>

namespace {

int pixelsOf(const QImage& image, const QColor& color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == color.rgb() ? 1 : 0;
    return count;
}

QString toolTipOver(QWidget& widget)
{
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, {2, 2}, widget.mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(&widget, &event);
    return QToolTip::text();
}

void showOf(QWidget& window, QBoxLayout* layout)
{
    window.setLayout(layout);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

} // namespace

class KitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void layoutKeepsItsFigures()
    {
        QWidget window;
        QWidget title;
        QWidget query;
        QWidget clear;
        QWidget note;
        title.setFixedHeight(20);
        clear.setFixedSize(22, 10);
        note.setFixedSize(50, 8);
        window.setLayout(column({.spacing = 12, .horizontal = 20, .vertical = 7},
                                {title, row({.spacing = 8}, {grow(query), clear}), gap(4),
                                 aligned(note, Qt::AlignLeft), stretch()}));
        window.resize(200, 100);
        window.show();
        QCOMPARE(title.geometry(), QRect(20, 7, 160, 20));
        QCOMPARE(query.geometry(), QRect(20, 39, 130, 10));
        QCOMPARE(clear.geometry(), QRect(158, 39, 22, 10));
        QCOMPARE(note.geometry(), QRect(20, 65, 50, 8)); // 12 + 4 below
    }

    void colorsFollowTheTheme()
    {
        QWidget window;
        setTheme(window, AppTheme::cream);
        ThemedText text(u"\u2588\u2588"_s, {.size = 40, .role = ColorRole::accent});
        ThemedText warning(u"\u2588\u2588"_s, {.size = 40, .role = StandardColor::red});
        SymbolView symbol(Symbol::bookClosedFill, {.size = 40});
        PlainButton button(Symbol::bookClosedFill, {.symbol = {.size = 40}});
        Rule rule;
        showOf(window, column({}, {text, warning, symbol, button, rule}));
        for (const AppTheme theme : {AppTheme::cream, AppTheme::dark}) {
            window.setPalette(themePalette(theme));
            const auto shows = [&](QWidget& widget, const QColor& color) {
                return pixelsOf(window.grab(widget.geometry()).toImage(), color);
            };
            const auto of = [&](ColorRole role) { return themeColor(window.palette(), role); };
            QVERIFY(shows(text, of(ColorRole::accent)) > 100);
            QVERIFY(shows(symbol, of(ColorRole::text)) > 100);
            QVERIFY(shows(button, of(ColorRole::text)) > 100);
            QCOMPARE(shows(rule, of(ColorRole::border)), rule.width());
            QVERIFY(shows(warning, standardColor(window.palette(), StandardColor::red)) > 100);
        }
    }

    void overflow()
    {
        const QString words = u"from the sea <b>to</b> the mountains"_s;
        const QString word = u"Donaudampfschifffahrtsgesellschaftskapitän"_s;
        const TextStyle style = {.tracking = 2};
        for (const auto& [text, overflow, width, lines, isElided] :
             Rows<QString, Overflow, int, int, bool>{
                 {words, Overflow::elide, 500, 1, false},
                 {words, Overflow::elide, 100, 1, true},
                 {words, Overflow::elide, 1, 1, true},
                 {u"a\r\nb\u2029c"_s, Overflow::elide, 500, 1, false},
                 {words, Overflow::none, 100, 1, false},
                 {u"one\r\ntwo\u2028three"_s, Overflow::wrap, 500, 3, false},
                 {word, Overflow::wrap, 250, 2, false},
                 {QString(textLimit.letters + 1, u'x'), Overflow::none, 100, 1, true}}) {
            const InRow row(text, width);
            ThemedText label(text, style, overflow);
            label.setFixedWidth(width);
            label.show();
            const TextBlock oneLine(u"x"_s, style, label.font(), Overflow::none);
            QCOMPARE(qRound(label.heightForWidth(label.width()) / oneLine.size().height()), lines);
            QCOMPARE(label.isElided(), isElided);
            QCOMPARE(toolTipOver(label), isElided ? plainToolTip(text) : QString());

            const TextBlock block(text, style, label.font(), overflow, width);
            QVERIFY(overflow == Overflow::none || width < 10 || block.size().width() <= width);
        }
    }

    void shortening()
    {
        const QString marks(9, QChar(0x301));
        for (const auto& [text, shown] :
             Rows<QString, QString>{{u"a\r\nb 34567"_s, u"a\r\nb 34567"_s},
                                    {u"123456789 01"_s, u"123456789…"_s},
                                    {u"a\r\nb\rc"_s, u"a\r\nb…"_s},
                                    {u"123👨‍👩‍👧‍👦"_s, u"123…"_s},
                                    {u"a"_s + marks + marks, u"a"_s + marks + u"…"_s}}) {
            const InRow row(text);
            QCOMPARE(shortened(text, {.letters = 10, .lines = 2}), shown);
        }
    }

    void fieldTakesWhatItCanLayOut()
    {
        QLineEdit field;
        field.setValidator(new InputLimit(1024, &field));
        field.setText(QString(2000, u'x'));
        QCOMPARE(field.text().size(), 1024);
    }

    void digitsAreEquallyWide()
    {
        TextStyle style = {.size = 30, .tracking = 1, .equalDigits = true};
        QFont face = font(style);
        face.setStretch(150);
        const auto width = [&](const QString& text) {
            return TextBlock(text, style, face, Overflow::none).size().width();
        };
        for (const QString& digits : {u"111"_s, u"777"_s})
            QCOMPARE(width(digits), width(u"000"_s));
    }

    void buttonHasTheSizeOfItsContent()
    {
        const SymbolStyle symbol{.size = 12};
        const ButtonStyle style{.symbol = symbol, .spacing = 6, .horizontal = 14, .vertical = 7};
        const ThemedText text(u"Full Entry"_s, style.text);
        QCOMPARE(PlainButton(Symbol::clock, text.text(), style).sizeHint(),
                 text.sizeHint() + QSize(12 + 6 + 28, 14));
        QCOMPARE(PlainButton(Symbol::clock, {.symbol = symbol, .frame = {22, 20}}).sizeHint(),
                 QSize(22, 20));
    }

    void buttonIsPressed()
    {
        QWidget window;
        PlainButton button(u"R&D"_s);
        showOf(window, column({}, {button}));
        QCOMPARE(button.accessibleName(), u"R&D"_s);
        button.setFocus();
        const QSignalSpy spy(&button, &PlainButton::clicked);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
            QTest::keyClick(&button, key);
        QTest::keyClick(&button, Qt::Key_D, Qt::AltModifier); // it has no mnemonic
        QCOMPARE(spy.size(), 3);
    }

    void commandEditsAsControlDoes()
    {
        TextField field;
        field.setText(u"abc"_s);
        for (const auto& [key, modifiers, text] : Rows<Qt::Key, Qt::KeyboardModifiers, QString>{
                 {Qt::Key_A, Qt::MetaModifier, u"abc"_s},
                 {Qt::Key_X, Qt::MetaModifier, u""_s},
                 {Qt::Key_V, Qt::MetaModifier, u"abc"_s},
                 {Qt::Key_Z, Qt::MetaModifier, u""_s},
                 {Qt::Key_Z, Qt::MetaModifier | Qt::ShiftModifier, u"abc"_s},
                 {Qt::Key_B, Qt::MetaModifier, u"abc"_s},
                 {Qt::Key_V, Qt::MetaModifier | Qt::AltModifier, u"abc"_s}}) {
            const InRow row(key, modifiers);
            QTest::keyClick(&field, key, modifiers);
            QCOMPARE(field.text(), text);
        }
    }

    void ringIsForTheKeyboard()
    {
        QWidget window;
        setTheme(window, AppTheme::cream);
        PlainButton first(u"One"_s);
        PlainButton second(u"Two"_s);
        first.setFocusPolicy(Qt::StrongFocus);
        showOf(window, column({.horizontal = 10, .vertical = 10}, {first, second}));
        const auto picture = [&] { return window.grab().toImage(); };
        const QImage plain = picture();
        first.setFocus(Qt::MouseFocusReason);
        QVERIFY(first.hasFocus());
        QCOMPARE(picture(), plain);
        QTest::keyClick(&first, Qt::Key_Tab);
        QVERIFY(second.hasFocus());
        QVERIFY(picture() != plain);
    }
};

VARNO_TEST(QApplication, KitTest)
#include "KitTest.moc"

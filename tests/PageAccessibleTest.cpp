#include "reader/ReadingColumn.h"
#include "reader/text/TextSurface.h"
#include "tests/Test.h"

#include <QAccessible>

namespace {

constexpr auto page =
    "# One\n\nIt *has* [a link](https://a.example) and [two](https://b.example).\n\n- a\n- b\n- "
    "c\n\n"
    "7. x\n8. y\n\n| A | B |\n|---|---|\n| 1 | 2 |\n| 3 | [4](https://c.example) |\n\n"
    "```\nlet\n\nbe\n```\n\n> q\n> r\n\n---\n\n**Bold**\n\nText\n> quoted\n\nEnd"_L1;

QString describe(const QAccessibleInterface& part)
{
    const QAccessible::State state = part.state();
    QString all = u"%1 %2/%3"_s.arg(part.role())
                      .arg(part.text(QAccessible::Name), part.text(QAccessible::Description));
    auto& asked = const_cast<QAccessibleInterface&>(part);
    if (const auto* text = asked.textInterface())
        all += u" <"_s + text->text(0, text->characterCount()) + u'>';
    for (int i = 0; i < part.childCount(); ++i) {
        const QAccessibleInterface* child = part.child(i);
        all += u'(' +
               (child->parent() == &part && part.indexOfChild(child) == i ? describe(*child)
                                                                          : u"lost"_s) +
               u')';
    }
    return all + (state.editable ? u"!"_s : QString());
}

QAccessibleInterface& interfaceOf(MarkdownContentView& view)
{
    return *QAccessible::queryAccessibleInterface(view.findChild<TextSurface*>());
}

} // namespace

/// The parts of a page, to assistive technology.
class PageAccessibleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void streamedIsAsAtOnce()
    {
        MarkdownContentView streamed;
        QAccessibleInterface& shown = interfaceOf(streamed);
        QAccessibleInterface* first = nullptr;
        for (qsizetype length = 1; length <= page.size(); ++length) {
            const InRow row(page.first(length));
            streamed.appendText(QString(page.sliced(length - 1, 1)));
            QCoreApplication::processEvents();
            MarkdownContentView whole;
            whole.setText(QString(page.first(length)));
            QCOMPARE(describe(shown), describe(interfaceOf(whole)));
            if (length == 10)
                first = shown.child(0);
        }
        QCOMPARE(shown.child(0), first);
        streamed.setText(u"Another"_s);
        QCoreApplication::processEvents();
        QCOMPARE(shown.childCount(), 1);
    }

    void tableHasCells()
    {
        MarkdownContentView view;
        view.setText(QString(page));
        QAccessibleTableInterface* table = nullptr;
        for (int i = 0; i < interfaceOf(view).childCount() && !table; ++i)
            table = interfaceOf(view).child(i)->tableInterface();
        QVERIFY(table);
        QCOMPARE(std::pair(table->rowCount(), table->columnCount()), std::pair(3, 2));
        QAccessibleTableCellInterface* cell = table->cellAt(2, 1)->tableCellInterface();
        QCOMPARE(std::pair(cell->rowIndex(), cell->columnIndex()), std::pair(2, 1));
        QCOMPARE(cell->columnHeaderCells().constFirst()->text(QAccessible::Name), u"B"_s);
        QVERIFY(!table->cellAt(3, 0));
    }

    void textInUnits()
    {
        MarkdownContentView view;
        view.setText(u"Two words. Here.\n\nNext"_s);
        const auto& text = *interfaceOf(view).textInterface();
        int begin = 0;
        int end = 0;
        for (const auto& [offset, kind, before, at, after] :
             Rows<int, QAccessible::TextBoundaryType, QString, QString, QString>{
                 {5, QAccessible::CharBoundary, u"w"_s, u"o"_s, u"r"_s},
                 {5, QAccessible::WordBoundary, u"Two "_s, u"words. "_s, u"Here."_s},
                 {5, QAccessible::SentenceBoundary, u""_s, u"Two words. "_s, u"Here."_s},
                 {18, QAccessible::ParagraphBoundary, u"Two words. Here.\n"_s, u"Next"_s, u""_s}}) {
            const InRow row(offset, kind);
            QCOMPARE(text.textBeforeOffset(offset, kind, &begin, &end), before);
            QCOMPARE(text.textAfterOffset(offset, kind, &begin, &end), after);
            QCOMPARE(text.textAtOffset(offset, kind, &begin, &end), at);
            QCOMPARE(text.text(begin, end), at);
        }
    }

    void stateIsToldOnce()
    {
        using State = ReadingColumn::PageState;
        ReadingColumn column;
        column.setPageState({});
        const auto parts = column.widget()->findChildren<QWidget*>();
        const auto state = std::ranges::find_if(parts, [](QWidget* part) {
            return QAccessible::queryAccessibleInterface(part)->role() == QAccessible::Notification;
        });
        QVERIFY(state != parts.end());
        for (const auto& [now, told] : std::initializer_list<std::pair<State, QString>>{
                 {State(), u""_s},
                 {State{.isStreaming = true}, u"Writing"_s},
                 {State{.isStreaming = true}, u"Writing"_s},
                 {State(), u"Done"_s},
                 {State{.errorMessage = u"Broken"_s}, u"Broken"_s},
                 {State{.isStreaming = true}, u"Writing"_s}}) {
            const InRow row(told);
            column.setPageState(now);
            column.appendText(u"More of it.\n\n"_s);
            QCOMPARE((*state)->accessibleName(), told);
        }
    }
};

VARNO_TEST(QApplication, PageAccessibleTest)
#include "PageAccessibleTest.moc"

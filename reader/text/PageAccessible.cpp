#include "reader/text/PageAccessible.h"

#include "reader/text/TextSurface.h"

#include <QCoreApplication>

#include <algorithm>

namespace varno {
namespace {

using Role = QAccessible::Role;

struct Note {
    Q_DECLARE_TR_FUNCTIONS(varno::PageAccessible)
};

bool isOf(const QTextBlock& row, RowForm form)
{
    return row.isValid() && formOf(row.blockFormat()) == form;
}

bool isItem(const QTextBlock& row)
{
    return row.isValid() && row.blockFormat().hasProperty(rowMarkWidth);
}

int blockOf(const QTextBlock& row)
{
    return row.blockFormat().intProperty(rowBlock);
}

/// Whether a row is the rest of the one before it.
bool goesOn(const QTextBlock& row)
{
    if (!row.previous().isValid())
        return false;
    const RowEnd end = endOf(row.previous().blockFormat());
    return end == RowEnd::blank || end == RowEnd::word;
}

bool isHeader(const QTextBlock& cell)
{
    return cell.blockFormat().boolProperty(rowIsHeader);
}

bool isInTableOf(const QTextBlock& cell, const QTextBlock& before)
{
    return isOf(before, RowForm::cell) && blockOf(cell) == blockOf(before) &&
           (!isHeader(cell) || isHeader(before));
}

bool isInListOf(const QTextBlock& item, const QTextBlock& before)
{
    return isItem(before) && blockOf(item) == blockOf(before);
}

/// Whether a row belongs to the very part that the row before it belongs to.
bool isInPartOf(const QTextBlock& row, const QTextBlock& before)
{
    if (goesOn(row))
        return true;
    if (isOf(row, RowForm::code)) // one fence may stand around several blocks
        return isOf(before, RowForm::code);
    return isOf(row, RowForm::quote) && isOf(before, RowForm::quote) &&
           blockOf(row) == blockOf(before);
}

/// The level that the marks in front of a heading say; 0 for what is none.
int headingLevel(const QTextBlock& row)
{
    switch (static_cast<BlockKind>(row.blockFormat().intProperty(rowKind))) {
    case BlockKind::heading1:
        return 1;
    case BlockKind::heading2:
        return 2;
    case BlockKind::heading3:
        return 3;
    case BlockKind::boldHeader:
        return 4;
    default:
        return 0;
    }
}

PartStart startOf(const QTextBlock& row)
{
    PartStart start{.position = row.position()};
    switch (formOf(row.blockFormat())) {
    case RowForm::quote:
        start.role = Role::Section;
        break;
    case RowForm::rule:
        start.role = Role::Separator;
        break;
    case RowForm::text:
        start.level = headingLevel(row);
        if (start.level > 0)
            start.role = Role::Heading;
        break;
    case RowForm::code:
    case RowForm::cell:
    case RowForm::hidden:
        break;
    }
    return start;
}

QAccessibleInterface* pageAccessible(const QString& /*className*/, QObject* object)
{
    auto* surface = qobject_cast<TextSurface*>(object);
    return surface ? new PageAccessible(*surface) : nullptr;
}

} // namespace

PageAccessible::PageAccessible(TextSurface& surface)
    : QAccessibleWidget(&surface, QAccessible::Section)
    , AccessibleText(surface)
    , m_parts(*this)
{
    m_update.setSingleShot(true);
    QObject::connect(&m_update, &QTimer::timeout, &m_update, [this] { update(); });
}

/// The toolkit has it made early, nobody listening; who asks for parts is assistive technology.
const PageParts& PageAccessible::parts() const
{
    if (!m_isRead) // NOLINTNEXTLINE(*-const-cast): the toolkit asks of a constant
        const_cast<PageAccessible*>(this)->readFirst();
    return m_parts;
}

void PageAccessible::readFirst()
{
    m_isRead = true;
    QObject::connect(&document(), &QTextDocument::contentsChange, &m_update,
                     [this](int position) { takeNote(position); });
    update();
    m_parts.tellChanges();
}

QAccessibleInterface* PageAccessible::child(int index) const
{
    return parts().at(index);
}

int PageAccessible::indexOfChild(const QAccessibleInterface* child) const
{
    return parts().indexOf(child);
}

QAccessibleInterface* PageAccessible::childAt(int x, int y) const
{
    return parts().under({x, y});
}

QString PageAccessible::text(QAccessible::Text what) const
{
    return QAccessibleWidget::text(what);
}

QAccessible::State PageAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.readOnly = true;
    state.selectableText = true;
    state.multiLine = true;
    return state;
}

void* PageAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

TextRange PageAccessible::range() const
{
    return {.begin = 0, .end = document().characterCount() - 1};
}

/// The document may be in the middle of a change.
void PageAccessible::takeNote(int position)
{
    m_changedFrom = std::min(position, m_changedFrom.value_or(position));
    m_update.start();
}

void PageAccessible::update()
{
    const int changedFrom = std::exchange(m_changedFrom, std::nullopt).value_or(0);
    const int last = document().characterCount() - 1;
    QTextBlock row = document().findBlock(std::min(changedFrom, last));
    m_parts.keepUpTo(row.position());
    const bool isEmpty = document().isEmpty();
    for (; row.isValid() && !isEmpty; row = row.next())
        readRow(row);
    m_parts.close();
}

void PageAccessible::readRow(const QTextBlock& row)
{
    if (isOf(row, RowForm::hidden))
        return;
    PagePart& part = isOf(row, RowForm::cell) ? openCell(row)
                     : isItem(row)            ? openItem(row)
                                              : openPart(row);
    const int end = row.position() + row.length() - 1;
    m_parts.open()->extendTo(end);
    part.extendTo(end);
    readLinks(row, part);
}

PagePart& PageAccessible::openPart(const QTextBlock& row)
{
    if (m_parts.open() && isInPartOf(row, row.previous()))
        return *m_parts.open();
    PagePart& part = m_parts.begin(surface(), startOf(row));
    if (isOf(row, RowForm::code))
        part.setNote(Note::tr("Code"));
    else if (isOf(row, RowForm::quote))
        part.setNote(Note::tr("Quotation"));
    return part;
}

PagePart& PageAccessible::openItem(const QTextBlock& row)
{
    PagePart* list = m_parts.open();
    if (!list || !(goesOn(row) || isInListOf(row, row.previous())))
        list = &m_parts.begin(surface(), {.position = row.position(), .role = Role::List});
    else if (goesOn(row) && list->parts().open())
        return *list->parts().open();
    PagePart& item =
        list->parts().begin(surface(), {.position = row.position(), .role = Role::ListItem});
    item.setNote(row.blockFormat().stringProperty(rowMark));
    return item;
}

PagePart& PageAccessible::openCell(const QTextBlock& row)
{
    PagePart* table = m_parts.open();
    if (!table || !(goesOn(row) || isInTableOf(row, row.previous())))
        table = &m_parts.begin(surface(), {.position = row.position(), .role = Role::Table});
    const PagePart* before = table->parts().open();
    if (before && goesOn(row))
        return *table->parts().open();
    const int column = row.blockFormat().intProperty(rowNumber);
    const int line = before ? before->start().line + (column == 0 ? 1 : 0) : 0;
    return table->parts().begin(surface(), {.position = row.position(),
                                            .role = isHeader(row) ? Role::ColumnHeader : Role::Cell,
                                            .line = line,
                                            .column = column});
}

void PageAccessible::readLinks(const QTextBlock& row, PagePart& part)
{
    QString address;
    for (auto at = row.begin(); !at.atEnd(); ++at) {
        const QTextFragment run = at.fragment();
        const QString before = std::exchange(address, run.charFormat().anchorHref());
        if (address.isEmpty())
            continue;
        if (address != before)
            part.parts().begin(surface(), {.position = run.position(), .role = Role::Link});
        part.parts().open()->extendTo(run.position() + run.length());
    }
}

void installPageAccessible(TextSurface& surface)
{
    static const bool isInstalled = (QAccessible::installFactory(pageAccessible), true);
    Q_UNUSED(isInstalled)
    renewAccessible(surface);
}

} // namespace varno

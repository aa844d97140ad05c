#include "reader/text/PageLayout.h"

#include "kit/FairShare.h"
#include "reader/text/RowFormat.h"

#include <QPainter>
#include <QStyle>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>

namespace varno {
namespace {

/// How many lines of a table decide how wide its columns are.
constexpr int measuredLines = 16;
constexpr double columnGap = 16;
/// What a column gets at least is as wide as its longest word, up to this.
constexpr double widestWord = 140;
/// Between rows of several forms in one block, in sizes of the text.
constexpr double formGap = 1;
constexpr int tabLetters = 4;

/// Each as wide as it wants, or as wide as the others that do not get what they want; but at least
/// as wide as it must be.
QList<double> sharedWidths(const QList<CellWidth>& columns, double available)
{
    QList<double> widths(columns.size());
    std::vector<qsizetype> open(static_cast<std::size_t>(columns.size()));
    std::iota(open.begin(), open.end(), 0);
    for (bool isSettled = false; !isSettled;) {
        QList<double> wanted;
        for (const qsizetype column : open)
            wanted.append(columns[column].wanted);
        const double share = fairShare(wanted, available);
        isSettled = true;
        std::erase_if(open, [&](qsizetype column) {
            widths[column] = std::min(columns[column].wanted, share);
            const bool isTooNarrow = widths[column] < columns[column].least;
            if (isTooNarrow) {
                widths[column] = columns[column].least;
                available -= widths[column];
                isSettled = false;
            }
            return isTooNarrow;
        });
    }
    return widths;
}

QTextOption optionFor(const QTextBlock& row, const QTextDocument& document)
{
    const QTextBlockFormat format = row.blockFormat();
    QTextOption option = document.defaultTextOption();
    const Qt::LayoutDirection direction = row.textDirection();
    option.setTextDirection(direction);
    option.setAlignment(QStyle::visualAlignment(direction, format.alignment()));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    if (formOf(format) == RowForm::code) {
        option.setWrapMode(QTextOption::WrapAnywhere);
        const QFontMetricsF metrics(row.charFormat().font());
        option.setTabStopDistance(tabLetters * metrics.horizontalAdvance(u' '));
    }
    return option;
}

CellWidth widthOf(const QTextBlock& cell)
{
    CellWidth width;
    QTextLayout layout(cell);
    QTextOption option;
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
    for (const double lineWidth : {0.0, 1e6}) {
        layout.beginLayout();
        double widest = 0;
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(lineWidth);
            widest = std::max(widest, std::ceil(line.naturalTextWidth()) + 1);
        }
        layout.endLayout();
        width.least = lineWidth > 0 ? width.least : std::min(widest, widestWord);
        width.wanted = widest;
    }
    return width;
}

bool isCell(const QTextBlock& row)
{
    return formOf(row.blockFormat()) == RowForm::cell;
}

/// Whether a row is the rest of the one before it.
bool goesOn(const QTextBlock& row)
{
    const RowEnd end = endOf(row.previous().blockFormat());
    return row.previous().isValid() && (end == RowEnd::blank || end == RowEnd::word);
}

int columnOf(const QTextBlock& cell)
{
    return cell.blockFormat().intProperty(rowNumber);
}

} // namespace

PageLayout::PageLayout(QTextDocument* document)
    : QAbstractTextDocumentLayout(document)
{
}

double PageLayout::width() const
{
    return std::max(document()->pageSize().width(), 0.0);
}

QSizeF PageLayout::documentSize() const
{
    return {width(), m_height};
}

QRectF PageLayout::frameBoundingRect(QTextFrame*) const
{
    return {QPointF(), documentSize()};
}

QRectF PageLayout::blockBoundingRect(const QTextBlock& row) const
{
    const auto number = static_cast<std::size_t>(row.blockNumber());
    if (!row.isValid() || number >= m_places.size())
        return {};
    const Place& place = m_places[number];
    const QRectF across = place.table < 0 ? QRectF(0, 0, width(), 0) : room(row);
    const double offset = row.layout()->position().x();
    return {across.left() + offset, place.top, across.width(), place.bottom - place.top};
}

/// The number of the first row whose line ends at or below `y`, or of the last one.
int PageLayout::firstBelow(double y) const
{
    const auto found = std::partition_point(m_places.begin(), m_places.end(),
                                            [y](const Place& p) { return p.lineBottom < y; });
    const auto number = static_cast<int>(found - m_places.begin());
    return std::min(number, static_cast<int>(m_places.size()) - 1);
}

QTextBlock PageLayout::rowAt(double y) const
{
    return document()->findBlockByNumber(std::max(firstBelow(y), 0));
}

/// Where on the line the text of a row may stand.
QRectF PageLayout::room(const QTextBlock& row) const
{
    const Place& place = m_places[static_cast<std::size_t>(row.blockNumber())];
    if (place.table >= 0) {
        const Columns& columns = *m_columns.constFind(place.table);
        const int column = columnOf(row);
        return {columns.lefts.at(column), 0, columns.widths.at(column), 0};
    }
    const QTextBlockFormat format = row.blockFormat();
    const double free = width() - format.leftMargin() - format.rightMargin();
    return {format.leftMargin(), 0, std::max(free, 1.0), 0};
}

void PageLayout::documentChanged(int from, int, int added)
{
    const QTextBlock first = document()->findBlock(from);
    QTextBlock last = document()->findBlock(from + added);
    const int count = document()->blockCount();
    if (!last.isValid() || count != static_cast<int>(m_places.size()))
        last = document()->lastBlock();
    const int firstNumber = first.isValid() ? first.blockNumber() : 0;
    m_places.resize(static_cast<std::size_t>(count));
    m_columns.removeIf([firstNumber](std::pair<const int&, Columns&> columns) {
        return columns.first > firstNumber;
    });

    std::set<int> tables;
    for (QTextBlock row = document()->findBlockByNumber(firstNumber); row.isValid();
         row = row.next()) {
        join(row);
        const Place& place = m_places[static_cast<std::size_t>(row.blockNumber())];
        if (place.table >= 0 && place.line < measuredLines)
            tables.insert(place.table);
    }
    int changed = firstNumber;
    for (const int table : tables) {
        if (updateColumns(table))
            changed = std::min(changed, table);
    }
    const double top = changed > 0 ? m_places[static_cast<std::size_t>(changed) - 1].lineBottom : 0;
    for (QTextBlock row = document()->findBlockByNumber(changed); row.isValid(); row = row.next())
        place(row, row.blockNumber() <= last.blockNumber());

    const double below = document()->lastBlock().blockFormat().bottomMargin();
    const double height = m_places.back().lineBottom + below;
    Q_EMIT update(QRectF(0, top, width(), std::max(height, m_height) - top));
    if (height != std::exchange(m_height, height))
        Q_EMIT documentSizeChanged(documentSize());
}

/// Finds the table that a row is in, and what width it wants there.
void PageLayout::join(const QTextBlock& row)
{
    const int number = row.blockNumber();
    Place& own = m_places[static_cast<std::size_t>(number)];
    own.table = -1;
    if (!isCell(row))
        return;
    const bool isHeader = row.blockFormat().boolProperty(rowIsHeader);
    const bool beginsLine = columnOf(row) == 0 && !goesOn(row);
    if (isHeader && beginsLine) {
        own.table = number;
        own.line = 0;
    } else {
        const Place& before = m_places[static_cast<std::size_t>(number) - 1];
        own.table = before.table;
        own.line = before.line + (beginsLine ? 1 : 0);
    }
    if (own.line < measuredLines)
        own.width = widthOf(row);
}

/// Whether the columns of a table are others now.
bool PageLayout::updateColumns(int table)
{
    QList<CellWidth> wanted;
    for (QTextBlock row = document()->findBlockByNumber(table); row.isValid(); row = row.next()) {
        const Place& place = m_places[static_cast<std::size_t>(row.blockNumber())];
        if (place.table != table || place.line >= measuredLines)
            break;
        const int column = columnOf(row);
        wanted.resize(std::max<qsizetype>(wanted.size(), column + 1));
        wanted[column].wanted = std::max(wanted[column].wanted, place.width.wanted);
        wanted[column].least = std::max(wanted[column].least, place.width.least);
    }
    const double gaps = columnGap * static_cast<double>(wanted.size() - 1);
    Columns columns;
    columns.widths = sharedWidths(wanted, width() - gaps);
    const QTextBlock header = document()->findBlockByNumber(table);
    columns.isMirrored =
        header.blockFormat().boolProperty(rowIsMirrored) || header.text().isRightToLeft();
    for (const double each : std::as_const(columns.widths)) {
        columns.lefts.append(columns.width);
        columns.width += each + columnGap;
    }
    columns.width -= columnGap;
    if (columns.isMirrored) {
        const double right = std::max(width(), columns.width);
        for (qsizetype column = 0; column < wanted.size(); ++column)
            columns.lefts[column] = right - columns.lefts[column] - columns.widths[column];
    }
    Columns& known = m_columns[table];
    const bool isSame = known.lefts == columns.lefts && known.widths == columns.widths;
    columns.offset = std::min(known.offset, std::max(columns.width - width(), 0.0));
    known = columns;
    return !isSame;
}

/// Places a row below, or beside, the one before it.
void PageLayout::place(const QTextBlock& row, bool isChanged)
{
    const int number = row.blockNumber();
    const QTextBlockFormat format = row.blockFormat();
    const QTextBlock previous = row.previous();
    const Place* before =
        previous.isValid() ? &m_places[static_cast<std::size_t>(number) - 1] : nullptr;
    Place& own = m_places[static_cast<std::size_t>(number)];
    const bool isBeside =
        before && own.table >= 0 && before->table == own.table && before->line == own.line;
    if (isBeside) {
        own.lineTop = before->lineTop;
        own.top = goesOn(row) ? before->bottom + format.lineHeight() : own.lineTop;
    } else {
        own.lineTop = format.topMargin();
        if (before) {
            const QTextBlockFormat above = previous.blockFormat();
            own.lineTop += before->lineBottom + above.bottomMargin();
            if (formOf(above) != formOf(format) &&
                above.intProperty(rowBlock) == format.intProperty(rowBlock))
                own.lineTop += formGap * document()->defaultFont().pixelSize();
        }
        own.top = own.lineTop;
    }
    const QRectF room = this->room(row);
    if (isChanged || row.layout()->lineCount() == 0 || own.table >= 0)
        layOut(row, room);
    move(row, own.top);
    const QTextLayout& layout = *row.layout();
    own.bottom = own.top;
    if (formOf(format) != RowForm::hidden && layout.lineCount() > 0) {
        const QTextLine line = layout.lineAt(layout.lineCount() - 1);
        own.bottom += std::ceil(line.y() + line.height());
    }
    own.lineBottom = own.bottom + format.lineHeight();
    if (isBeside)
        own.lineBottom = std::max(own.lineBottom, before->lineBottom);
}

void PageLayout::layOut(const QTextBlock& row, const QRectF& room)
{
    QTextLayout& layout = *row.layout();
    layout.setTextOption(optionFor(row, *document()));
    layout.beginLayout();
    const double distance = row.blockFormat().lineHeight();
    double y = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(room.width());
        line.setPosition({room.left(), y});
        y += std::ceil(line.height()) + distance;
    }
    layout.endLayout();
}

void PageLayout::move(const QTextBlock& row, double y)
{
    const int table = m_places[static_cast<std::size_t>(row.blockNumber())].table;
    const double x = table < 0 ? 0 : -m_columns.constFind(table)->offset;
    row.layout()->setPosition({x, y});
}

int PageLayout::hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const
{
    if (m_places.empty())
        return -1;
    QTextBlock row = rowAt(point.y());
    const Place& first = m_places[static_cast<std::size_t>(row.blockNumber())];
    double nearest = std::numeric_limits<double>::max();
    for (QTextBlock other = row; other.isValid() && first.table >= 0; other = other.next()) {
        const Place& place = m_places[static_cast<std::size_t>(other.blockNumber())];
        if (place.table != first.table || place.line != first.line)
            break;
        const QRectF rect = blockBoundingRect(other);
        const double distance = std::max({rect.left() - point.x(), point.x() - rect.right(), 0.0}) +
                                std::max(rect.top() - point.y(), 0.0);
        if (distance < nearest || (distance <= nearest && rect.top() <= point.y()))
            row = other;
        nearest = std::min(nearest, distance);
    }
    const QTextLayout& layout = *row.layout();
    const QPointF inside = point - layout.position();
    QTextLine line = layout.lineCount() > 0 ? layout.lineAt(0) : QTextLine();
    for (int index = 1; index < layout.lineCount() && layout.lineAt(index).y() <= inside.y();
         ++index)
        line = layout.lineAt(index);
    if (!line.isValid())
        return accuracy == Qt::ExactHit ? -1 : row.position();
    if (accuracy == Qt::ExactHit && !line.naturalTextRect().contains(inside))
        return -1;
    return row.position() + line.xToCursor(inside.x());
}

void PageLayout::draw(QPainter* painter, const PaintContext& context)
{
    const QRectF clip = context.clip.isValid() ? context.clip : QRectF(QPointF(), documentSize());
    painter->setPen(context.palette.color(QPalette::Text));
    for (QTextBlock row = rowAt(clip.top()); row.isValid(); row = row.next()) {
        const Place& place = m_places[static_cast<std::size_t>(row.blockNumber())];
        if (place.lineTop > clip.bottom())
            break;
        QList<QTextLayout::FormatRange> selections;
        for (const Selection& selection : context.selections) {
            const int start = selection.cursor.selectionStart() - row.position();
            const int end = selection.cursor.selectionEnd() - row.position();
            if (start < row.length() && end > 0)
                selections.append(
                    {.start = start, .length = end - start, .format = selection.format});
        }
        row.layout()->draw(painter, {}, selections, clip);
    }
}

QRectF PageLayout::tableLine(const QTextBlock& cell) const
{
    QTextBlock last = cell;
    const Place& place = m_places[static_cast<std::size_t>(cell.blockNumber())];
    for (QTextBlock next = cell.next(); next.isValid(); last = next, next = next.next()) {
        const Place& other = m_places[static_cast<std::size_t>(next.blockNumber())];
        if (other.table != place.table || other.line != place.line)
            break;
    }
    const double padding = cell.blockFormat().topMargin();
    const double bottom = m_places[static_cast<std::size_t>(last.blockNumber())].lineBottom;
    const Columns& columns = *m_columns.constFind(place.table);
    const double reach = std::min(columns.width, width());
    return {columns.isMirrored ? width() - reach : 0, place.lineTop - padding, reach,
            bottom - place.lineTop + 2 * padding};
}

PageLayout::Overflow PageLayout::tableOverflow(const QTextBlock& cell) const
{
    const int table = m_places[static_cast<std::size_t>(cell.blockNumber())].table;
    const Columns& columns = *m_columns.constFind(table);
    return {std::max(columns.width - width(), 0.0), columns.offset};
}

bool PageLayout::scrollTable(const QPointF& point, double by)
{
    const QTextBlock at = rowAt(point.y());
    const int table =
        at.isValid() ? m_places[static_cast<std::size_t>(at.blockNumber())].table : -1;
    if (table < 0)
        return false;
    Columns& columns = m_columns[table];
    const double most = std::max(columns.width - width(), 0.0);
    const double offset = std::clamp(columns.offset + by, 0.0, most);
    if (offset == std::exchange(columns.offset, offset))
        return false;
    QTextBlock row = document()->findBlockByNumber(table);
    const double top = m_places[static_cast<std::size_t>(table)].lineTop;
    double bottom = top;
    for (; row.isValid(); row = row.next()) {
        const Place& place = m_places[static_cast<std::size_t>(row.blockNumber())];
        if (place.table != table)
            break;
        move(row, place.top);
        bottom = place.lineBottom;
    }
    Q_EMIT update(QRectF(0, top, width(), bottom - top));
    return true;
}

} // namespace varno

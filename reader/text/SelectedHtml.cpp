#include "reader/text/SelectedHtml.h"

#include "reader/text/RowFormat.h"
#include "reader/text/SelectedRows.h"

#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The elements that a row stands in, the outermost first.
QStringList elementsOf(const QTextBlockFormat& format)
{
    switch (formOf(format)) {
    case RowForm::code:
        return {u"pre"_s};
    case RowForm::quote:
        return QStringList(format.intProperty(rowNumber), u"blockquote"_s) + QStringList{u"p"_s};
    case RowForm::cell:
        return {u"table"_s, u"tr"_s, format.boolProperty(rowIsHeader) ? u"th"_s : u"td"_s};
    case RowForm::rule:
        return {u"hr"_s};
    case RowForm::hidden:
        return {};
    case RowForm::text:
        break;
    }
    if (format.hasProperty(rowMarkWidth))
        return {format.boolProperty(rowMarkCentred) ? u"ul"_s : u"ol"_s, u"li"_s};
    static const std::array headings = {u"h4"_s, u"h3"_s, u"h2"_s, u"h1"_s};
    const auto kind = static_cast<std::size_t>(format.intProperty(rowKind));
    return {kind < headings.size() ? headings[kind] : u"p"_s};
}

QString attributesOf(const QString& element, const QTextBlockFormat& format)
{
    if (element == "li"_L1) {
        bool isNumber = false;
        const int number = format.stringProperty(rowMark).remove(u'.').toInt(&isNumber);
        return isNumber ? u" value=\"%1\""_s.arg(number) : QString();
    }
    const bool isCell = element == "td"_L1 || element == "th"_L1;
    if (isCell && format.alignment().testFlag(Qt::AlignRight))
        return u" align=\"right\""_s;
    if (isCell && format.alignment().testFlag(Qt::AlignHCenter))
        return u" align=\"center\""_s;
    return {};
}

/// How many of the elements of a row are still open for the one after it.
qsizetype sharedBy(const QTextBlockFormat& row, const QTextBlockFormat& next)
{
    const QStringList elements = elementsOf(row);
    const QStringList following = elementsOf(next);
    const auto [end, _] =
        std::mismatch(elements.begin(), elements.end(), following.begin(), following.end());
    const qsizetype common = end - elements.begin();
    switch (endOf(row)) {
    case RowEnd::blank:
    case RowEnd::word:
        return common;
    case RowEnd::cell:
        return std::min<qsizetype>(common, 2);
    case RowEnd::item:
    case RowEnd::line:
    case RowEnd::block:
        break;
    }
    const bool isNewBlock = row.intProperty(rowBlock) != next.intProperty(rowBlock);
    switch (formOf(row)) {
    case RowForm::code:
        return common;
    case RowForm::cell: {
        const bool isNewTable = next.boolProperty(rowIsHeader);
        return isNewBlock || isNewTable ? 0 : std::min<qsizetype>(common, 1);
    }
    default:
        return isNewBlock ? 0 : std::min(common, elements.size() - 1);
    }
}

QString withLooks(const SelectedRun& run, const QTextBlockFormat& row)
{
    const QTextCharFormat& format = run.format;
    QString html = run.text.toHtmlEscaped().replace(QChar(QChar::LineSeparator), u"<br>"_s);
    const auto wrap = [&html](bool condition, const QString& element) {
        if (condition)
            html = u'<' + element + u'>' + html + u"</"_s + element + u'>';
    };
    const bool isCode = formOf(row) == RowForm::code;
    wrap(format.verticalAlignment() == QTextCharFormat::AlignSubScript, u"sub"_s);
    wrap(format.verticalAlignment() == QTextCharFormat::AlignSuperScript, u"sup"_s);
    wrap(!isCode && format.hasProperty(QTextFormat::FontFamilies), u"code"_s);
    wrap(format.fontStrikeOut(), u"s"_s);
    wrap(format.fontUnderline() && !format.isAnchor(), u"u"_s);
    wrap(format.fontItalic(), u"em"_s);
    const bool isBoldAnyway =
        elementsOf(row).constFirst().startsWith(u'h') || row.boolProperty(rowIsHeader);
    wrap(format.fontWeight() >= QFont::Bold && !isBoldAnyway, u"strong"_s);
    if (format.isAnchor())
        html = u"<a href=\""_s + format.anchorHref().toHtmlEscaped() + u"\">"_s + html + u"</a>"_s;
    return html;
}

QString separatorWithin(const QTextBlockFormat& row, const QTextBlockFormat& next)
{
    if (endOf(row) == RowEnd::blank)
        return u" "_s;
    if (endOf(row) == RowEnd::word || formOf(row) != RowForm::code)
        return {};
    const bool isNewBlock = row.intProperty(rowBlock) != next.intProperty(rowBlock);
    return isNewBlock ? u"\n\n"_s : u"\n"_s;
}

} // namespace

QString selectedHtml(const QTextCursor& cursor)
{
    const QList<SelectedRow> rows = selectedRows(cursor);
    const bool isWithinOne = rows.size() == 1; // goes on in the paragraph where it is pasted
    QString html;
    qsizetype open = 0;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        const SelectedRow& row = rows[index];
        const QStringList elements = isWithinOne ? QStringList() : elementsOf(row.format);
        for (const QString& element : elements.sliced(open))
            html += u'<' + element + attributesOf(element, row.format) + u'>';
        for (const SelectedRun& run : row.runs)
            html += withLooks(run, row.format);
        const bool isLast = index + 1 == rows.size();
        open = isLast || isWithinOne ? 0 : sharedBy(row.format, rows[index + 1].format);
        if (open == elements.size() && !isLast)
            html += separatorWithin(row.format, rows[index + 1].format);
        for (qsizetype depth = elements.size() - 1; depth >= open; --depth) {
            if (elements[depth] != "hr"_L1)
                html += u"</"_s + elements[depth] + u'>';
        }
    }
    return html;
}

} // namespace varno

#include "reader/text/SelectedText.h"

#include "reader/text/RowFormat.h"
#include "reader/text/SelectedRows.h"

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The mark of a row that does not have it in its text.
QString leadingMark(const QTextBlockFormat& format)
{
    if (formOf(format) == RowForm::rule)
        return u"---"_s;
    if (!format.hasProperty(rowMarkWidth) || format.stringProperty(rowMark).isEmpty())
        return {};
    return format.boolProperty(rowMarkCentred) ? u"- "_s : format.stringProperty(rowMark) + u' ';
}

QString separatorAfter(const QTextBlockFormat& format)
{
    switch (endOf(format)) {
    case RowEnd::block:
        return u"\n\n"_s;
    case RowEnd::item:
    case RowEnd::line:
        return u"\n"_s;
    case RowEnd::cell:
        return u"\t"_s;
    case RowEnd::blank:
        return u" "_s;
    case RowEnd::word:
        break;
    }
    return {};
}

QString textOf(const QTextCursor& cursor, bool withLinks)
{
    QString result;
    for (const SelectedRow& row : selectedRows(cursor)) {
        if (row.isFromStart)
            result += leadingMark(row.format);
        for (const SelectedRun& run : row.runs) {
            const QString address = run.format.anchorHref();
            result += run.text;
            if (withLinks && run.endsLink && !run.link.endsWith(address))
                result += u" ("_s + address + u')';
        }
        if (row.isToEnd)
            result += separatorAfter(row.format);
    }
    return result.replace(QChar(QChar::LineSeparator), u'\n');
}

} // namespace

QString selectedText(const QTextCursor& cursor)
{
    return textOf(cursor, false);
}

QString selectedTextWithLinks(const QTextCursor& cursor)
{
    return textOf(cursor, true);
}

} // namespace varno

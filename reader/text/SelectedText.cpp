#include "reader/text/SelectedText.h"

#include "reader/text/RowFormat.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The mark of a row that does not have it in its text.
QString leadingMark(const QTextBlockFormat& format)
{
    if (!format.hasProperty(rowMarkWidth) || format.stringProperty(rowMark).isEmpty())
        return {};
    return format.boolProperty(rowMarkCentred) ? u"- "_s : format.stringProperty(rowMark) + u' ';
}

QString separatorAfter(const QTextBlockFormat& format)
{
    switch (static_cast<RowEnd>(format.intProperty(rowEnd))) {
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

} // namespace

QString selectedText(const QTextCursor& cursor)
{
    QString result;
    const int end = cursor.selectionEnd();
    QTextBlock row = cursor.document()->findBlock(cursor.selectionStart());
    for (int begin = cursor.selectionStart(); row.isValid() && begin < end; row = row.next()) {
        const QTextBlockFormat format = row.blockFormat();
        const QString text = row.text();
        const int from = begin - row.position();
        if (from == 0)
            result += leadingMark(format);
        result += QStringView(text).sliced(from).first(
            std::min<qsizetype>(end - begin, text.size() - from));
        begin = row.position() + row.length();
        if (begin <= end)
            result += separatorAfter(format);
    }
    return result.replace(QChar(QChar::LineSeparator), u'\n');
}

} // namespace varno

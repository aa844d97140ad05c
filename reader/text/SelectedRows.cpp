#include "reader/text/SelectedRows.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace varno {
namespace {

QList<SelectedRun> runsOf(const QTextBlock& row, int begin, int end)
{
    QList<SelectedRun> runs;
    for (auto at = row.begin(); !at.atEnd(); ++at) {
        const QTextFragment fragment = at.fragment();
        const int from = std::max(begin, fragment.position());
        const int to = std::min(end, fragment.position() + fragment.length());
        if (from >= to)
            continue;
        SelectedRun run{.text = fragment.text().sliced(from - fragment.position(), to - from),
                        .format = fragment.charFormat()};
        if (const QString address = run.format.anchorHref(); !address.isEmpty()) {
            const bool goesOn = !runs.isEmpty() && runs.last().format.anchorHref() == address;
            if (goesOn)
                runs.last().endsLink = false;
            run.link = (goesOn ? runs.last().link : QString()) + run.text;
            run.endsLink = true;
        }
        runs.append(run);
    }
    return runs;
}

} // namespace

QList<SelectedRow> selectedRows(const QTextCursor& cursor)
{
    QList<SelectedRow> rows;
    const int begin = cursor.selectionStart();
    const int end = cursor.selectionEnd();
    for (QTextBlock row = cursor.document()->findBlock(begin);
         row.isValid() && row.position() < std::max(end, begin + 1); row = row.next()) {
        const int rowEnd = row.position() + row.length() - 1;
        if (begin == end)
            break;
        rows.append({.format = row.blockFormat(),
                     .runs = runsOf(row, begin, end),
                     .isFromStart = begin <= row.position(),
                     .isToEnd = end > rowEnd});
    }
    return rows;
}

} // namespace varno

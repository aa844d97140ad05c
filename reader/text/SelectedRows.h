#pragma once

#include <QList>
#include <QTextBlockFormat>
#include <QTextCharFormat>

class QTextCursor;

namespace varno {

/// A part of a row in one look.
struct SelectedRun {
    QString text;
    QTextCharFormat format;
    bool endsLink = false; ///< whether no more of its link follows
    QString link{};        ///< the text of that link so far
};

/// What is selected of a row.
struct SelectedRow {
    QTextBlockFormat format;
    QList<SelectedRun> runs;
    bool isFromStart = false;
    bool isToEnd = false; ///< and goes on in the next one
};

/// What is selected in a document of `DocumentWriter`.
[[nodiscard]] QList<SelectedRow> selectedRows(const QTextCursor& cursor);

} // namespace varno

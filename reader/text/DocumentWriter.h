#pragma once

#include "reader/text/RowFormat.h"

#include <QDeadlineTimer>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <optional>

namespace varno {

/// Keeps a document equal to a text: one text block for each row, in the formats of `RowFormat`.
///
/// Writes only what differs: text that grows at its end costs the same however long the page is,
/// and the document, its layout and its cursors stay as they are before the first difference.
class DocumentWriter {
public:
    /// The document outlives the writer, and nobody else changes it.
    DocumentWriter(QTextDocument& document, const RowFormat& format);

    // Each of these only takes note; `write` does the work.
    void setText(QStringView text);
    void appendText(QStringView piece);
    void setFormat(const RowFormat& format);
    void setTextColor(const QColor& color);

    /// Writes what is still to be written, until the deadline, but at least up to the row of that
    /// index.
    void write(const QDeadlineTimer& deadline = QDeadlineTimer(QDeadlineTimer::Forever),
               qsizetype atLeast = 0);
    /// Whether nothing is left to be written.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }

    [[nodiscard]] qsizetype rowCount() const { return m_rows.size(); }
    [[nodiscard]] qsizetype blockCount() const { return m_blocks.size(); }
    /// The number of the text block that a block begins with; `index` is less than `blockCount`.
    [[nodiscard]] int firstRow(qsizetype index) const { return m_blocks.at(index); }

    [[nodiscard]] const RowFormat& format() const { return m_format; }

private:
    struct WrittenRow {
        RowStart start;
        qsizetype textOffset = 0; ///< of its Markdown in the text
        qsizetype textLength = 0;
    };

    /// What the last row shows: of what comes instead, only the difference is written.
    struct ShownRow {
        RowLook look;
        QTextBlockFormat format{};
        QList<InlineRun> runs{};
    };

    [[nodiscard]] qsizetype firstOpenRow() const;
    [[nodiscard]] qsizetype firstUnsettledRow(qsizetype first, qsizetype last) const;
    void keepRows(qsizetype count);
    void takeNote(qsizetype unchanged);
    void writeRow(qsizetype index, const Row& row);
    [[nodiscard]] bool isWritten(qsizetype index, const WrittenRow& row) const;
    void placeBlock(qsizetype index, const ShownRow& row);
    void writeText(qsizetype index, const ShownRow& row, const QList<InlineRun>& old);
    void insertRuns(const ShownRow& row, qsizetype skipped);
    [[nodiscard]] QTextBlock blockOf(qsizetype index) const;

    QTextDocument& m_document;
    QTextCursor m_cursor; ///< for the writer's own edits
    RowFormat m_format;
    QString m_text;            ///< without the blanks it begins with, which no block shows
    qsizetype m_unchanged = 0; ///< how much of the text is as it was when it was last written
    bool m_isComplete = true;
    QList<WrittenRow> m_rows;
    QList<int> m_blocks;            ///< the first row of each block
    std::optional<ShownRow> m_last; ///< if it is known
};

} // namespace varno

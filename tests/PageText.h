#pragma once

#include "reader/text/MarkdownContentView.h"
#include "tests/Patience.h"

#include <QRandomGenerator>
#include <QTextBrowser>

namespace varno {

/// All that the document of a page says once it is written to its end.
inline QString described(MarkdownContentView& view)
{
    constexpr int beyondAllBlocks = 1 << 20;
    static_cast<void>(view.blockRect(beyondAllBlocks));
    QString rows = view.document().toHtml();
    for (QTextBlock row = view.document().begin(); row.isValid(); row = row.next()) {
        const QTextBlockFormat format = row.blockFormat();
        rows += format.stringProperty(rowMark);
        for (const int property : {rowBlock, rowEnd, rowMarkWidth, rowForm, rowNumber, rowIsHeader})
            rows += u'|' + format.property(property).toString();
    }
    return rows;
}

/// Writes `text` in pieces of any length up to `longest`, and sees whether that makes the page that
/// is made at once.
inline void streamInPieces(const QString& text, int longest, QRandomGenerator& random)
{
    MarkdownContentView atOnce;
    atOnce.setText(text);
    MarkdownContentView streamed;
    for (qsizetype begin = 0; begin < text.size();) {
        const qsizetype length =
            std::min<qsizetype>(random.bounded(1, longest + 1), text.size() - begin);
        streamed.appendText(QStringView(text).sliced(begin, length));
        begin += length;
    }
    QCOMPARE(described(streamed), described(atOnce));
}

} // namespace varno

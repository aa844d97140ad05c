#pragma once

#include <QString>
#include <QVarLengthArray>

namespace varno {

/// Stands before what would open a block, so that it does not. Blank for all rules of emphasis, and
/// yet no blank to the rules of blocks.
inline constexpr QByteArrayView markdownGuard("\xC2\xA0");

/// A paragraph as the parser gets it: what it would take for marks is hidden from it, in bytes that
/// no valid UTF-8 has.
struct MarkdownSource {
    QByteArray text;                      ///< UTF-8
    QVarLengthArray<qsizetype, 8> guards; ///< where a guard stands
    QVarLengthArray<qsizetype, 8> breaks; ///< which of them begin a line of their own
};

[[nodiscard]] MarkdownSource markdownSource(QStringView paragraph);

/// The text of a part of a source; what was hidden is there again.
[[nodiscard]] QString decodedMarkdown(QByteArrayView text);

} // namespace varno

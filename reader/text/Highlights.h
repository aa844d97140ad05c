#pragma once

#include <QList>
#include <QStringView>

namespace varno {

/// A range of a text, in UTF-16 units.
struct TextRange {
    qsizetype begin = 0;
    qsizetype end = 0;

    bool operator==(const TextRange&) const = default;
};

/// The ranges where `needle` occurs in a text, ignoring case and without overlap. A range covers
/// whole grapheme clusters.
[[nodiscard]] QList<TextRange> highlightRanges(QStringView shown, const QString& needle);

} // namespace varno

#pragma once

#include <QList>
#include <QStringView>

namespace varno {

/// A stretch of a text, in UTF-16 units.
struct TextRange {
    qsizetype begin = 0;
    qsizetype end = 0;

    bool operator==(const TextRange&) const = default;
};

/// Where `needle` occurs in a text, without overlap and whatever the case of its letters. A range
/// covers whole user-perceived characters.
[[nodiscard]] QList<TextRange> highlightRanges(QStringView shown, const QString& needle);

} // namespace varno

#pragma once

#include "kit/TextBlock.h"

#include <QStringView>

namespace varno {

/// The ranges where `needle` occurs in a text, ignoring case and without overlap. A range covers
/// whole grapheme clusters.
[[nodiscard]] QList<TextRange> highlightRanges(QStringView shown, const QString& needle);

} // namespace varno

#pragma once

#include <QString>

namespace varno::bench {

/// A page of `length` characters: the articles and sections of the library, one after another and
/// from the start again.
QString pageSample(qsizetype length);

/// What a model sends at a time, on average, in characters.
constexpr qsizetype pieceLength = 12;

} // namespace varno::bench

#pragma once

#include "core/Session.h"

namespace varno::bench {

/// A page of `length` characters: the articles and sections of the library, one after another and
/// from the start again.
QString pageSample(qsizetype length);

/// What a model sends at a time, on average, in characters.
constexpr qsizetype pieceLength = 12;

/// A full history, made of the same texts: a hundred articles, each with six sections of 6 KB that
/// were all opened. About 4 MB when written.
QList<Session> historySample();

} // namespace varno::bench

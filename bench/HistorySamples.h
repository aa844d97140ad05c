#pragma once

#include "core/Session.h"

namespace varno::bench {

/// A full history: a hundred articles, each with six sections of some 6 KB that were all opened.
/// About 4 MB when written.
QList<Session> historySample();

} // namespace varno::bench

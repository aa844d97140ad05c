#pragma once

#include "demo/EntryLibrary.h"

namespace varno {

/// What a model would answer to `prompt` if it knew the library and nothing else: an entry between
/// its tags, or an array of section names. On what the library does not hold it says so, and names
/// what there is. As with real models some answers, always the same ones, have a remark before the
/// entry or a fence around the array.
QString modelAnswer(const EntryLibrary& library, const QString& prompt);

} // namespace varno

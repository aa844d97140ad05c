#pragma once

#include "core/EntryType.h"

#include <QString>

namespace varno {

// The texts that steer the model. What it answers is read by them too: they ask for an <entry>
// element whose last line is "SEE_ALSO_JSON:" and an array of related topics, so every character
// counts. Topics go in as they are, quotes and all.

/// The prompt for a new entry on `query`.
QString entryPrompt(EntryType type, const QString& query);

/// The prompt for a section, which its parent's table of contents names so.
QString sectionPrompt(const QString& section, const QString& parentTopic);

/// The system prompt of every entry and every section.
QString entrySystemPrompt();

QString tocPrompt(const QString& topic);
QString tocSystemPrompt();

} // namespace varno

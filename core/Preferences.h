#pragma once

#include "core/AIModel.h"
#include "core/Appearance.h"
#include "platform/PreferencesStore.h"

namespace varno {

using namespace Qt::StringLiterals;

namespace preferenceKey {
inline const QString aiModel = u"aiModel"_s;
inline const QString theme = u"theme"_s;
inline const QString fontSize = u"fontSize"_s;
inline const QString webSearchEnabled = u"webSearchEnabled"_s;
inline const QString imagesEnabled = u"imagesEnabled"_s;
inline const QString searchHistory = u"searchHistory"_s;
} // namespace preferenceKey

struct Preferences {
    bool imagesEnabled = false;
    bool webSearchEnabled = false;
    AIModel aiModel = AIModel::sonnet;
    QStringList searchHistory;
    FontSize fontSize = FontSize::medium;
    AppTheme theme = AppTheme::cream;
};

/// Reads the preferences from `store`, with defaults for values that are absent or unknown.
Preferences readPreferences(const PreferencesStore& store);

} // namespace varno

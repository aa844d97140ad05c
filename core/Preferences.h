#pragma once

#include "core/AIModel.h"
#include "core/Appearance.h"
#include "platform/PreferencesStore.h"

namespace varno {

namespace preferenceKey {
inline const QString aiModel = QStringLiteral("aiModel");
inline const QString theme = QStringLiteral("theme");
inline const QString fontSize = QStringLiteral("fontSize");
inline const QString webSearchEnabled = QStringLiteral("webSearchEnabled");
inline const QString imagesEnabled = QStringLiteral("imagesEnabled");
inline const QString searchHistory = QStringLiteral("searchHistory");
} // namespace preferenceKey

struct Preferences {
    bool imagesEnabled = false;
    bool webSearchEnabled = false;
    AIModel aiModel = AIModel::sonnet;
    QStringList searchHistory;
    FontSize fontSize = FontSize::medium;
    AppTheme theme = AppTheme::cream;
};

/// What `store` holds; the default for each value that is absent or unknown. Stores nothing.
Preferences readPreferences(const PreferencesStore& store);

} // namespace varno

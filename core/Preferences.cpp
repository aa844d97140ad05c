#include "core/Preferences.h"

namespace varno {
namespace {

template <typename Case>
void readCase(const PreferencesStore& store, const QString& key, Case& value)
{
    if (const auto raw = store.string(key))
        value = fromRawValue<Case>(*raw).value_or(value);
}

} // namespace

Preferences readPreferences(const PreferencesStore& store)
{
    Preferences preferences;
    preferences.imagesEnabled = store.boolean(preferenceKey::imagesEnabled).value_or(false);
    preferences.webSearchEnabled = store.boolean(preferenceKey::webSearchEnabled).value_or(false);
    readCase(store, preferenceKey::aiModel, preferences.aiModel);
    preferences.searchHistory =
        store.stringArray(preferenceKey::searchHistory).value_or(QStringList());
    readCase(store, preferenceKey::fontSize, preferences.fontSize);
    readCase(store, preferenceKey::theme, preferences.theme);
    return preferences;
}

} // namespace varno

#pragma once

#include "platform/PreferencesStore.h"
#include "shortcuts/Shortcut.h"

#include <optional>

namespace varno {

/// Stores shortcuts in the preferences, under "KeyboardShortcuts_" and the name: a JSON text, or
/// false for a name with a default that the user has cleared.
class ShortcutStore {
public:
    explicit ShortcutStore(PreferencesStore& preferences)
        : m_preferences(preferences)
    {
    }

    /// Whether a value is stored under the name.
    [[nodiscard]] bool contains(const QString& name) const;
    /// The stored shortcut; nothing if there is none or it cannot be decoded.
    [[nodiscard]] std::optional<Shortcut> read(const QString& name) const;

    void write(const QString& name, const Shortcut& shortcut);
    void writeCleared(const QString& name);
    void remove(const QString& name);

private:
    PreferencesStore& m_preferences;
};

} // namespace varno

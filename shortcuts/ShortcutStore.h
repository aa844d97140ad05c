#pragma once

#include "platform/PreferencesStore.h"
#include "shortcuts/Shortcut.h"

#include <optional>

namespace varno {

/// Shortcuts as the preferences keep them: under "KeyboardShortcuts_" and the name a JSON text, or
/// false for one that the user does not want although it has a default.
class ShortcutStore {
public:
    explicit ShortcutStore(PreferencesStore& preferences)
        : m_preferences(preferences)
    {
    }

    /// Whether anything was ever decided about the name.
    [[nodiscard]] bool contains(const QString& name) const;
    /// Nothing if there is none, or what is stored cannot be read.
    [[nodiscard]] std::optional<Shortcut> read(const QString& name) const;

    void write(const QString& name, const Shortcut& shortcut);
    void writeCleared(const QString& name);
    void remove(const QString& name);

private:
    PreferencesStore& m_preferences;
};

} // namespace varno

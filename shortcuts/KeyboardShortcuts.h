#pragma once

#include "platform/PreferencesStore.h"
#include "shortcuts/HandlerTable.h"
#include "shortcuts/HotKeyCenter.h"
#include "shortcuts/Shortcut.h"

#include <QList>
#include <QObject>
#include <QSet>

namespace varno {

class ShortcutEvents;

/// Keyboard shortcuts that the user assigns to names, and that work whichever program has the
/// focus. Main thread only.
///
/// A name is live from its first handler, or from `enable`, until its last handler goes, or
/// `disable`. The shortcut of a live name is registered with the system; when the system refuses,
/// that is said on the console.
class KeyboardShortcuts : public QObject {
    Q_OBJECT

public:
    using Shortcut = varno::Shortcut;
    using Action = HandlerTable::Action;

    class Name {
    public:
        /// Stores the default in `shortcuts` if nothing is stored under the name.
        explicit Name(QString rawValue, std::optional<Shortcut> defaultShortcut = {},
                      KeyboardShortcuts& shortcuts = shared());

        [[nodiscard]] const QString& rawValue() const { return m_rawValue; }
        [[nodiscard]] const std::optional<Shortcut>& defaultShortcut() const
        {
            return m_defaultShortcut;
        }

        friend bool operator==(const Name& one, const Name& other)
        {
            return one.m_rawValue == other.m_rawValue;
        }

    private:
        QString m_rawValue;
        std::optional<Shortcut> m_defaultShortcut;
    };

    /// All three outlive it.
    KeyboardShortcuts(PreferencesStore& preferences, HotKeyEvents& events, Keyboard& keyboard);
    ~KeyboardShortcuts() override;

    /// The program's own, on the system's backends; made on first use.
    static KeyboardShortcuts& shared();

    [[nodiscard]] std::optional<Shortcut> getShortcut(const Name& name) const;
    /// Stores the shortcut of a name. With nothing it is cleared, so that the default does not
    /// return at the next start.
    void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name);
    void reset(const QList<Name>& names);
    /// Resets all names that were made for this object.
    void resetAll();

    void onKeyDown(const Name& name, Action action);
    void onKeyUp(const Name& name, Action action);
    /// The presses and releases of a name, announced as long as the result lives.
    [[nodiscard]] std::unique_ptr<ShortcutEvents> events(const Name& name);
    void removeHandler(const Name& name);
    void removeAllHandlers();

    void enable(const QList<Name>& names);
    void disable(const QList<Name>& names);
    /// Whether its shortcut is registered with the system.
    [[nodiscard]] bool isEnabled(const Name& name) const;

    /// The switch of all shortcuts. While it is off they stay registered and call nothing.
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }
    void setEnabled(bool enabled);

    [[nodiscard]] const Keyboard& keyboard() const { return m_keyboard; }
    [[nodiscard]] QString description(const Shortcut& shortcut) const
    {
        return shortcut.description(m_keyboard);
    }
    /// The combination that works for a name, as the system names it or else as `description` does;
    /// empty if there is none.
    [[nodiscard]] QString shownShortcut(const Name& name) const;
    /// Whether a name has a shortcut that is known to come here from every program.
    [[nodiscard]] bool works(const Name& name) const;
    /// Whether a name has a shortcut that the system has refused.
    [[nodiscard]] bool isRefused(const Name& name) const;
    /// Whether the system or another program has reserved the combination.
    [[nodiscard]] bool isReserved(const Shortcut& shortcut) const;
    /// See `HotKeyCenter::lastEventTime`.
    [[nodiscard]] quint32 lastEventTime() const { return m_center.lastEventTime(); }

Q_SIGNALS:
    void shortcutByNameDidChange(const varno::KeyboardShortcuts::Name& name);
    /// Emitted by the recorder: while it is active no handler is called.
    void recorderActiveStatusDidChange(bool active);
    /// Shortcuts may be shown otherwise now: the keyboard has another layout, or the system has
    /// made something else of them.
    void shownShortcutsDidChange();

private:
    friend class ShortcutEvents;

    void introduce(const Name& name);
    [[nodiscard]] std::optional<Shortcut> stored(const QString& name) const;
    [[nodiscard]] bool hasHandler(const QString& name) const;
    [[nodiscard]] bool isWanted(const Shortcut& shortcut) const;
    void setLive(const QString& name, bool live);
    void handlersRemoved(const QString& name);
    /// Registers or unregisters the shortcut, as the live names require.
    void update(const std::optional<Shortcut>& shortcut);
    void registerWithSystem(const Shortcut& shortcut);
    void takeBinding(const Shortcut& shortcut);
    void reportRefusal(const Shortcut& shortcut) const;
    void store(const std::optional<Shortcut>& shortcut, const Name& name, bool cleared);
    void run(const Shortcut& shortcut, HandlerTable& legacy, HandlerTable& stream);
    void updatePaused();

    HotKeyEvents& m_events;
    Keyboard& m_keyboard;
    PreferencesStore& m_preferences;
    QList<Name> m_names;
    HandlerTable m_legacyKeyDownHandlers;
    HandlerTable m_legacyKeyUpHandlers;
    HandlerTable m_streamKeyDownHandlers;
    HandlerTable m_streamKeyUpHandlers;
    QSet<QString> m_live;
    int m_activeRecorders = 0;
    bool m_isEnabled = true;
    HotKeyCenter m_center;
};

} // namespace varno

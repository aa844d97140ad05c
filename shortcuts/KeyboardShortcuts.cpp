#include "shortcuts/KeyboardShortcuts.h"

#include "platform/Platform.h"
#include "shortcuts/ShortcutEvents.h"
#include "shortcuts/StoredShortcut.h"

#include <QPointer>

#include <algorithm>
#include <functional>
#include <iostream>
#include <utility>

namespace varno {

KeyboardShortcuts::Name::Name(QString rawValue, std::optional<Shortcut> defaultShortcut,
                              KeyboardShortcuts& shortcuts)
    : m_rawValue(std::move(rawValue))
    , m_defaultShortcut(defaultShortcut)
{
    shortcuts.introduce(*this);
}

KeyboardShortcuts::KeyboardShortcuts(PreferencesStore& preferences, HotKeyEvents& events,
                                     Keyboard& keyboard)
    : m_events(events)
    , m_keyboard(keyboard)
    , m_preferences(preferences)
    , m_center(events)
{
    connect(this, &KeyboardShortcuts::recorderActiveStatusDidChange, this, [this](bool active) {
        m_activeRecorders += active ? 1 : -1;
        updatePaused();
    });
    m_center.setBindingHandler(std::bind_front(&KeyboardShortcuts::takeBinding, this));
    connect(&keyboard, &Keyboard::layoutChanged, this, &KeyboardShortcuts::shownShortcutsDidChange);
}

KeyboardShortcuts::~KeyboardShortcuts() = default;

KeyboardShortcuts& KeyboardShortcuts::shared()
{
    static const std::unique_ptr<PreferencesStore> preferences = makeSystemPreferencesStore();
    static KeyboardShortcuts shortcuts(*preferences, systemHotKeyEvents(), systemKeyboard());
    return shortcuts;
}

void KeyboardShortcuts::introduce(const Name& name)
{
    m_names.removeAll(name);
    m_names.append(name);
    if (name.defaultShortcut() && !m_preferences.contains(preferenceKey(name.rawValue())))
        setShortcut(name.defaultShortcut(), name);
}

std::optional<Shortcut> KeyboardShortcuts::getShortcut(const Name& name) const
{
    return stored(name.rawValue());
}

std::optional<Shortcut> KeyboardShortcuts::stored(const QString& name) const
{
    const std::optional<QString> text = m_preferences.string(preferenceKey(name));
    return text ? decoded(*text) : std::nullopt;
}

void KeyboardShortcuts::setShortcut(const std::optional<Shortcut>& shortcut, const Name& name)
{
    if (shortcut || getShortcut(name))
        store(shortcut, name, name.defaultShortcut().has_value());
}

void KeyboardShortcuts::reset(const QList<Name>& names)
{
    for (const Name& name : names)
        store(name.defaultShortcut(), name, false);
}

void KeyboardShortcuts::resetAll()
{
    reset(QList<Name>(m_names));
}

void KeyboardShortcuts::store(const std::optional<Shortcut>& shortcut, const Name& name,
                              bool cleared)
{
    const std::optional<Shortcut> old = getShortcut(name);
    const QString key = preferenceKey(name.rawValue());
    if (shortcut)
        m_preferences.setString(key, encoded(*shortcut));
    else if (cleared)
        m_preferences.setBoolean(key, false);
    else
        m_preferences.remove(key);
    if (hasHandler(name.rawValue()))
        m_live.insert(name.rawValue());
    for (const auto& changed : {old, shortcut})
        if (changed)
            m_center.remove(*changed); // whatever the system has made of it
    update(old);
    update(shortcut);
    Q_EMIT shortcutByNameDidChange(name);
}

void KeyboardShortcuts::onKeyDown(const Name& name, Action action)
{
    m_legacyKeyDownHandlers.add(name.rawValue(), std::move(action));
    setLive(name.rawValue(), true);
}

void KeyboardShortcuts::onKeyUp(const Name& name, Action action)
{
    m_legacyKeyUpHandlers.add(name.rawValue(), std::move(action));
    setLive(name.rawValue(), true);
}

std::unique_ptr<ShortcutEvents> KeyboardShortcuts::events(const Name& name)
{
    return std::make_unique<ShortcutEvents>(*this, name);
}

void KeyboardShortcuts::removeHandler(const Name& name)
{
    for (HandlerTable* table : {&m_legacyKeyDownHandlers, &m_legacyKeyUpHandlers,
                                &m_streamKeyDownHandlers, &m_streamKeyUpHandlers})
        table->removeAll(name.rawValue());
    handlersRemoved(name.rawValue());
}

void KeyboardShortcuts::removeAllHandlers()
{
    for (const Name& name : QList<Name>(m_names))
        removeHandler(name);
}

void KeyboardShortcuts::enable(const QList<Name>& names)
{
    for (const Name& name : names)
        setLive(name.rawValue(), true);
}

void KeyboardShortcuts::disable(const QList<Name>& names)
{
    for (const Name& name : names)
        setLive(name.rawValue(), false);
}

bool KeyboardShortcuts::isEnabled(const Name& name) const
{
    const std::optional<Shortcut> shortcut = getShortcut(name);
    return shortcut && m_live.contains(name.rawValue()) && m_center.binding(*shortcut).isBound;
}

void KeyboardShortcuts::setEnabled(bool enabled)
{
    m_isEnabled = enabled;
    updatePaused();
}

QString KeyboardShortcuts::shownShortcut(const Name& name) const
{
    const std::optional<Shortcut> shortcut = getShortcut(name);
    if (!shortcut)
        return {};
    const QString trigger = m_center.binding(*shortcut).trigger;
    return trigger.isEmpty() ? description(*shortcut) : trigger;
}

bool KeyboardShortcuts::works(const Name& name) const
{
    return isEnabled(name) && m_center.binding(*getShortcut(name)).isCertain;
}

bool KeyboardShortcuts::isRefused(const Name& name) const
{
    return getShortcut(name) && m_live.contains(name.rawValue()) && !isEnabled(name);
}

bool KeyboardShortcuts::isReserved(const Shortcut& shortcut) const
{
    return m_events.isReserved(shortcut.carbonKeyCode(), shortcut.carbonModifiers());
}

bool KeyboardShortcuts::hasHandler(const QString& name) const
{
    return m_legacyKeyDownHandlers.contains(name) || m_legacyKeyUpHandlers.contains(name) ||
           m_streamKeyDownHandlers.contains(name) || m_streamKeyUpHandlers.contains(name);
}

bool KeyboardShortcuts::isWanted(const Shortcut& shortcut) const
{
    return std::any_of(m_live.begin(), m_live.end(),
                       [&](const QString& name) { return stored(name) == shortcut; });
}

void KeyboardShortcuts::setLive(const QString& name, bool live)
{
    if (live)
        m_live.insert(name);
    else
        m_live.remove(name);
    update(stored(name));
}

void KeyboardShortcuts::handlersRemoved(const QString& name)
{
    if (!hasHandler(name))
        setLive(name, false);
}

void KeyboardShortcuts::update(const std::optional<Shortcut>& shortcut)
{
    if (!shortcut)
        return;
    const bool isBound = m_center.binding(*shortcut).isBound;
    if (isWanted(*shortcut) && isBound)
        return;
    m_center.remove(*shortcut);
    if (isWanted(*shortcut))
        registerWithSystem(*shortcut);
}

void KeyboardShortcuts::registerWithSystem(const Shortcut& shortcut)
{
    const HotKeyCenter::Callbacks callbacks{
        .keyDown = [this,
                    shortcut] { run(shortcut, m_legacyKeyDownHandlers, m_streamKeyDownHandlers); },
        .keyUp = [this, shortcut] { run(shortcut, m_legacyKeyUpHandlers, m_streamKeyUpHandlers); },
    };
    if (!m_center.add(shortcut, callbacks))
        reportRefusal(shortcut);
}

void KeyboardShortcuts::takeBinding(const Shortcut& shortcut)
{
    if (!m_center.binding(shortcut).isBound)
        reportRefusal(shortcut);
    Q_EMIT shownShortcutsDidChange();
}

void KeyboardShortcuts::reportRefusal(const Shortcut& shortcut) const
{
    std::cerr << "Error registering hotkey " << qPrintable(description(shortcut)) << std::endl;
}

void KeyboardShortcuts::run(const Shortcut& shortcut, HandlerTable& legacy, HandlerTable& stream)
{
    const QPointer<KeyboardShortcuts> alive(this);
    for (const QString& name : QSet<QString>(m_live)) {
        if (stored(name) != shortcut)
            continue;
        legacy.run(name);
        if (!alive)
            return;
        stream.run(name);
        if (!alive)
            return;
    }
}

void KeyboardShortcuts::updatePaused()
{
    m_center.setPaused(!m_isEnabled || m_activeRecorders > 0);
}

} // namespace varno

#include "shortcuts/ShortcutEvents.h"

namespace varno {

ShortcutEvents::ShortcutEvents(KeyboardShortcuts& shortcuts, const KeyboardShortcuts::Name& name)
    : m_shortcuts(&shortcuts)
    , m_name(name.rawValue())
    , m_keyDown(shortcuts.m_streamKeyDownHandlers.add(m_name, [this] { Q_EMIT keyDown(); }))
    , m_keyUp(shortcuts.m_streamKeyUpHandlers.add(m_name, [this] { Q_EMIT keyUp(); }))
{
    shortcuts.setLive(m_name, true);
}

ShortcutEvents::~ShortcutEvents()
{
    if (!m_shortcuts)
        return;
    m_shortcuts->m_streamKeyDownHandlers.remove(m_name, m_keyDown);
    m_shortcuts->m_streamKeyUpHandlers.remove(m_name, m_keyUp);
    m_shortcuts->handlersRemoved(m_name);
}

} // namespace varno

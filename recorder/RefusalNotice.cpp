#include "recorder/RefusalNotice.h"

#include "platform/ProgramKeys.h"

#include <utility>

namespace varno {
namespace {

/// Where Control stands for Command, desktops have keys of their own, which can start a program.
QString sentence()
{
    return controlStandsForCommand()
               ? RefusalNotice::tr("This shortcut could not be registered: record another one, or "
                                   "bind a key to “varno” in the settings of your desktop.")
               : RefusalNotice::tr("This shortcut could not be registered: record another one.");
}

} // namespace

RefusalNotice::RefusalNotice(KeyboardShortcuts::Name name, KeyboardShortcuts& shortcuts)
    : ThemedText(sentence(), {.size = 11, .role = StandardColor::orange}, Overflow::wrap)
    , m_name(std::move(name))
    , m_shortcuts(shortcuts)
{
    connect(&shortcuts, &KeyboardShortcuts::shownShortcutsDidChange, this,
            &RefusalNotice::showIfRefused);
    connect(&shortcuts, &KeyboardShortcuts::shortcutByNameDidChange, this,
            &RefusalNotice::showIfRefused);
    if (!m_shortcuts.isRefused(m_name))
        hide(); // and otherwise it is shown with what it is put in
}

void RefusalNotice::showIfRefused()
{
    setVisible(m_shortcuts.isRefused(m_name));
}

} // namespace varno

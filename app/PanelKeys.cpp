#include "app/PanelKeys.h"

#include "platform/KeyLabel.h"
#include "platform/ProgramKeys.h"

#include <QCoreApplication>

namespace varno {
namespace {

Shortcut shortcutOf(const MenuKey& key, const Keyboard& keyboard)
{
    Modifiers modifiers(QFlag(static_cast<int>(key.modifiers)));
    if (key.character.isUpper())
        modifiers |= Modifier::shift;
    return {carbonKeyCodeTyping(key.character.toLower(), keyboard), carbonModifiersOf(modifiers)};
}

} // namespace

QList<MenuItem> panelKeys(const Keyboard& keyboard)
{
    const auto typing = [&](char16_t letter) { return carbonKeyCodeTyping(letter, keyboard); };
    const std::initializer_list<std::pair<int, const char*>> actions = {
        {typing(u'k'), QT_TRANSLATE_NOOP("PanelKeys", "New search")},
        {typing(u'f'), QT_TRANSLATE_NOOP("PanelKeys", "Find in entry")},
        {typing(u','), QT_TRANSLATE_NOOP("PanelKeys", "Settings")},
        {typing(u'q'), QT_TRANSLATE_NOOP("PanelKeys", "Quit")},
        {typing(u'r'), QT_TRANSLATE_NOOP("PanelKeys", "Reload entry")},
        {static_cast<int>(Key::returnKey), QT_TRANSLATE_NOOP("PanelKeys", "Full Entry")},
        {static_cast<int>(Key::leftArrow), QT_TRANSLATE_NOOP("PanelKeys", "Back")},
    };
    QList<Modifier> modifiers = {Modifier::command};
    if (controlStandsForCommand())
        modifiers.prepend(Modifier::control);
    QList<MenuItem> items;
    for (const auto& [keyCode, title] : actions)
        for (const Modifier modifier : modifiers)
            items.append({.title = QCoreApplication::translate("PanelKeys", title),
                          .shortcut = Shortcut(keyCode, carbonModifiersOf(modifier))});
    for (const MenuKey& key : menuKeys())
        items.append({.title = key.title, .shortcut = shortcutOf(key, keyboard)});
    return items;
}

} // namespace varno

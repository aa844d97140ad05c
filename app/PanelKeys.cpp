#include "app/PanelKeys.h"

#include "platform/KeyLabel.h"

#include <QCoreApplication>

namespace varno {

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
    QList<MenuItem> items;
    for (const auto& [keyCode, title] : actions)
        for (const Modifier modifier : {Modifier::control, Modifier::command})
            items.append({.title = QCoreApplication::translate("PanelKeys", title),
                          .shortcut = Shortcut(keyCode, carbonModifiersOf(modifier))});
    return items;
}

} // namespace varno

#include "shortcuts/Shortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/KeyLabel.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace varno {
namespace {

struct ModifierForms {
    Modifier flag{};
    int carbon = 0;
};

constexpr std::array modifierForms = {
    ModifierForms{Modifier::control, carbonModifier::control},
    ModifierForms{Modifier::option, carbonModifier::option},
    ModifierForms{Modifier::shift, carbonModifier::shift},
    ModifierForms{Modifier::command, carbonModifier::command},
    ModifierForms{Modifier::function, carbonModifier::function},
};

/// The words among the labels; the others are symbols.
constexpr std::array words = {QT_TRANSLATE_NOOP("varno::KeyLabel", "Space"),
                              QT_TRANSLATE_NOOP("varno::KeyLabel", "Help"),
                              QT_TRANSLATE_NOOP("varno::KeyLabel", "Volume Up"),
                              QT_TRANSLATE_NOOP("varno::KeyLabel", "Volume Down"),
                              QT_TRANSLATE_NOOP("varno::KeyLabel", "Mute")};

QString translated(QStringView label)
{
    constexpr QStringView keypad = u"Keypad ";
    if (label.startsWith(keypad))
        return QCoreApplication::translate("varno::KeyLabel", "Keypad %1")
            .arg(label.sliced(keypad.size()));
    const auto* const word = std::ranges::find_if(
        words, [label](const char* text) { return label == QLatin1StringView(text); });
    return word == words.end() ? label.toString()
                               : QCoreApplication::translate("varno::KeyLabel", *word);
}

} // namespace

Modifiers modifiersOf(int carbonModifiers)
{
    Modifiers modifiers;
    for (const ModifierForms& forms : modifierForms)
        modifiers.setFlag(forms.flag, (carbonModifiers & forms.carbon) != 0);
    return modifiers;
}

int carbonModifiersOf(Modifiers modifiers)
{
    int carbon = 0;
    for (const ModifierForms& forms : modifierForms)
        carbon |= modifiers.testFlag(forms.flag) ? forms.carbon : 0;
    return carbon;
}

Shortcut::Shortcut(Key key, Modifiers modifiers)
    : Shortcut(static_cast<int>(key), carbonModifiersOf(modifiers))
{
}

QString Shortcut::description(const Keyboard& keyboard) const
{
    const KeyLabel label = keyLabel(m_carbonKeyCode);
    return modifierSymbols(m_carbonModifiers) + (label.kind == KeyLabel::Kind::character
                                                     ? characterLabel(m_carbonKeyCode, keyboard)
                                                     : translated(label.text));
}

} // namespace varno

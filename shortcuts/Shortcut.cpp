#include "shortcuts/Shortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/KeyLabel.h"

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
                                                     : label.text.toString());
}

} // namespace varno

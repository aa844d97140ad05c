#include "shortcuts/Shortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/KeyLabel.h"

#include <array>

namespace varno {
namespace {

struct ModifierForms {
    Modifier flag{};
    int carbon = 0;
    QStringView symbol;
};

/// In the order in which they are shown.
constexpr std::array modifierForms = {
    ModifierForms{Modifier::control, carbonModifier::control, u"⌃"},
    ModifierForms{Modifier::option, carbonModifier::option, u"⌥"},
    ModifierForms{Modifier::shift, carbonModifier::shift, u"⇧"},
    ModifierForms{Modifier::command, carbonModifier::command, u"⌘"},
    ModifierForms{Modifier::function, carbonModifier::function, u"\U0001F310\uFE0E"},
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
    QString text;
    for (const ModifierForms& forms : modifierForms)
        if (modifiers().testFlag(forms.flag))
            text += forms.symbol;
    const KeyLabel label = keyLabel(m_carbonKeyCode);
    return text + (label.kind == KeyLabel::Kind::character
                       ? characterLabel(m_carbonKeyCode, keyboard)
                       : label.text.toString());
}

} // namespace varno

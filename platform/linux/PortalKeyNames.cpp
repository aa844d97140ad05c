#include "platform/linux/PortalKeyNames.h"

#include "platform/Key.h"
#include "platform/KeyLabel.h"

#include <QList>

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct NamedKey {
    Key key{};
    QStringView name;
};

/// Those whose keysyms are not named as the keys are.
constexpr std::array namedKeys = {
    NamedKey{Key::space, u"space"},
    NamedKey{Key::deleteKey, u"BackSpace"},
    NamedKey{Key::forwardDelete, u"Delete"},
    NamedKey{Key::escape, u"Escape"},
    NamedKey{Key::pageUp, u"Prior"},
    NamedKey{Key::pageDown, u"Next"},
    NamedKey{Key::volumeUp, u"XF86AudioRaiseVolume"},
    NamedKey{Key::volumeDown, u"XF86AudioLowerVolume"},
    NamedKey{Key::mute, u"XF86AudioMute"},
    NamedKey{Key::eisu, u"Hangul_Hanja"},
    NamedKey{Key::kana, u"Hangul"},
    NamedKey{Key::keypadDecimal, u"KP_Decimal"},
    NamedKey{Key::keypadComma, u"KP_Separator"},
    NamedKey{Key::keypadPlus, u"KP_Add"},
    NamedKey{Key::keypadMinus, u"KP_Subtract"},
    NamedKey{Key::keypadMultiply, u"KP_Multiply"},
    NamedKey{Key::keypadDivide, u"KP_Divide"},
    NamedKey{Key::keypadEquals, u"KP_Equal"},
    NamedKey{Key::keypadEnter, u"KP_Enter"},
};

QString nameOf(const QString& character)
{
    std::array<char, 64> name{};
    const xkb_keysym_t keysym = xkb_utf32_to_keysym(character.toUcs4().value(0));
    const int length = xkb_keysym_get_name(keysym, name.data(), name.size());
    return length > 0 ? QString::fromLatin1(name.data()) : QString();
}

} // namespace

QString keysymName(int carbonKeyCode, const Keyboard& keyboard)
{
    const KeyLabel label = keyLabel(carbonKeyCode);
    if (label.kind == KeyLabel::Kind::character)
        return nameOf(latinLabel(carbonKeyCode, keyboard).toLower());
    const auto* const found =
        std::find_if(namedKeys.begin(), namedKeys.end(), [carbonKeyCode](const NamedKey& named) {
            return static_cast<int>(named.key) == carbonKeyCode;
        });
    if (found != namedKeys.end())
        return found->name.toString();
    return label.pcName.toString().replace(u"Num+"_s, u"KP_"_s); // of digits
}

} // namespace varno

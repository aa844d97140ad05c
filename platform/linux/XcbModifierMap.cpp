#include "platform/linux/XcbModifierMap.h"

#include "platform/CarbonModifiers.h"
#include "platform/linux/XcbConnection.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace varno {
namespace {

constexpr quint16 allModifiers = 0xFF;

/// The keysyms of all keys, a row for each.
class KeysymTable {
public:
    explicit KeysymTable(XcbConnection& connection)
        : m_first(connection.setup()->min_keycode)
    {
        const auto count = static_cast<quint8>(connection.setup()->max_keycode - m_first + 1);
        m_reply.reset(xcb_get_keyboard_mapping_reply(
            connection.get(), xcb_get_keyboard_mapping(connection.get(), m_first, count), nullptr));
    }

    [[nodiscard]] std::span<const xcb_keysym_t> of(xcb_keycode_t keyCode) const
    {
        if (!m_reply || keyCode < m_first)
            return {};
        const std::size_t width = m_reply->keysyms_per_keycode;
        const std::span<const xcb_keysym_t> all(
            xcb_get_keyboard_mapping_keysyms(m_reply.get()),
            static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(m_reply.get())));
        const std::size_t begin = (keyCode - m_first) * width;
        return begin + width <= all.size() ? all.subspan(begin, width)
                                           : std::span<const xcb_keysym_t>();
    }

private:
    xcb_keycode_t m_first;
    XcbReply<xcb_get_keyboard_mapping_reply_t> m_reply;
};

/// The modifiers from which one of the keysyms counts, first the more usual keysyms.
struct Meaning {
    quint16 XcbModifierMap::*member;
    std::array<xcb_keysym_t, 2> keysyms;
};

constexpr std::array meanings = {
    Meaning{&XcbModifierMap::capsLock, {XKB_KEY_Caps_Lock, XKB_KEY_Shift_Lock}},
    Meaning{&XcbModifierMap::numLock, {XKB_KEY_Num_Lock, XKB_KEY_Num_Lock}},
    Meaning{&XcbModifierMap::option, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}},
    Meaning{&XcbModifierMap::command, {XKB_KEY_Super_L, XKB_KEY_Super_R}},
};

/// The first modifier that a key sets is the one.
void note(XcbModifierMap& map, quint16 modifier, std::span<const xcb_keysym_t> keysyms)
{
    for (const Meaning& meaning : meanings) {
        const auto found = std::find_first_of(keysyms.begin(), keysyms.end(),
                                              meaning.keysyms.begin(), meaning.keysyms.end());
        if (found != keysyms.end() && map.*meaning.member == 0)
            map.*meaning.member = modifier;
    }
}

} // namespace

XcbModifierMap XcbModifierMap::read(XcbConnection& connection)
{
    if (!connection.isOpen())
        return {};
    const XcbReply<xcb_get_modifier_mapping_reply_t> reply(xcb_get_modifier_mapping_reply(
        connection.get(), xcb_get_modifier_mapping(connection.get()), nullptr));
    const KeysymTable keysyms(connection);
    connection.readLater();
    if (!reply)
        return {};
    const std::span<const xcb_keycode_t> keyCodes(
        xcb_get_modifier_mapping_keycodes(reply.get()),
        static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(reply.get())));
    XcbModifierMap map;
    for (std::size_t i = 0; i < keyCodes.size(); ++i)
        if (keyCodes[i] != 0)
            note(map, static_cast<quint16>(1U << (i / reply->keycodes_per_modifier)),
                 keysyms.of(keyCodes[i]));
    return map;
}

std::optional<quint16> XcbModifierMap::mask(int carbonModifiers) const
{
    const std::array<std::pair<int, quint16>, 5> modifiers = {{
        {carbonModifier::shift, XCB_MOD_MASK_SHIFT},
        {carbonModifier::control, XCB_MOD_MASK_CONTROL},
        {carbonModifier::option, option},
        {carbonModifier::command, command},
        {carbonModifier::function, 0}, // the keyboard keeps that one to itself
    }};
    quint16 mask = 0;
    for (const auto& [carbon, modifier] : modifiers) {
        if ((carbonModifiers & carbon) == 0)
            continue;
        if (modifier == 0)
            return std::nullopt;
        mask |= modifier;
    }
    return mask;
}

std::vector<quint16> XcbModifierMap::lockVariants() const
{
    std::vector<quint16> variants = {0};
    for (const quint16 lock : {capsLock, numLock})
        if (lock != 0)
            for (const quint16 variant : std::vector<quint16>(variants))
                variants.push_back(variant | lock);
    return variants;
}

quint16 XcbModifierMap::held(quint16 state) const
{
    return static_cast<quint16>(state & allModifiers & ~(capsLock | numLock));
}

} // namespace varno

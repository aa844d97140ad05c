#include "recorder/ShortcutRefusal.h"

#include "platform/KeyLabel.h"

#include <algorithm>

namespace varno {
namespace {

bool isOptionAlone(Modifiers modifiers)
{
    constexpr Modifiers compared = Modifier::command | Modifier::control | Modifier::option |
                                   Modifier::function | Modifier::capsLock;
    return (modifiers & compared) == Modifier::option;
}

/// Whether the system has the flaw of not reporting keys with Option alone.
bool disallowsOptionAlone(const QOperatingSystemVersion& system)
{
    return system.type() == QOperatingSystemVersion::MacOS && system.majorVersion() == 15 &&
           (system.minorVersion() == 0 || system.minorVersion() == 1);
}

/// Whether a combination would stop every program from being written in.
bool isWrittenWith(const Shortcut& shortcut)
{
    return !(shortcut.modifiers() & ~Modifiers(Modifier::shift)) &&
           keyLabel(shortcut.carbonKeyCode()).kind != KeyLabel::Kind::function;
}

} // namespace

std::optional<ShortcutRefusal> refusalOf(const Shortcut& shortcut, const ShortcutRules& rules)
{
    using Reason = ShortcutRefusal::Reason;
    const QList<MenuItem>& items = rules.menuItems;
    const auto item = std::find_if(items.begin(), items.end(), [&](const MenuItem& candidate) {
        return candidate.shortcut == shortcut;
    });
    if (item != items.end())
        return ShortcutRefusal{.reason = Reason::usedByMenuItem, .menuItem = item->title};
    if (disallowsOptionAlone(rules.system) && isOptionAlone(shortcut.modifiers()))
        return ShortcutRefusal{.reason = Reason::disallowed};
    if (isWrittenWith(shortcut) || (rules.isReserved && rules.isReserved(shortcut)))
        return ShortcutRefusal{.reason = Reason::usedBySystem};
    return std::nullopt;
}

} // namespace varno

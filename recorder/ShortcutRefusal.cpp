#include "recorder/ShortcutRefusal.h"

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
    if (rules.isReserved && rules.isReserved(shortcut))
        return ShortcutRefusal{.reason = Reason::usedBySystem};
    return std::nullopt;
}

} // namespace varno

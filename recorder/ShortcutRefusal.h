#pragma once

#include "shortcuts/Shortcut.h"

#include <QList>
#include <QOperatingSystemVersion>
#include <QString>

#include <functional>
#include <optional>

namespace varno {

/// An item of the program's menu, and the keys that choose it.
struct MenuItem {
    QString title;
    Shortcut shortcut;
};

/// Why a combination is not taken.
struct ShortcutRefusal {
    enum class Reason {
        usedByMenuItem,
        disallowed,   ///< the system does not report it
        usedBySystem, ///< or by another program; people may insist on it
    };

    Reason reason;
    QString menuItem{}; ///< its title, if it is one
};

/// What a combination is checked against.
struct ShortcutRules {
    QList<MenuItem> menuItems{};
    QOperatingSystemVersion system = QOperatingSystemVersion::current();
    std::function<bool(const Shortcut&)> isReserved{};
};

/// Nothing if the combination can be used.
[[nodiscard]] std::optional<ShortcutRefusal> refusalOf(const Shortcut& shortcut,
                                                       const ShortcutRules& rules);

} // namespace varno

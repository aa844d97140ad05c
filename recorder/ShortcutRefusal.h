#pragma once

#include "shortcuts/Shortcut.h"

#include <QList>
#include <QOperatingSystemVersion>
#include <QString>

#include <functional>
#include <optional>

namespace varno {

/// An item of the program's menu, with its key equivalent.
struct MenuItem {
    QString title;
    Shortcut shortcut;
};

/// The reason why a combination is refused.
struct ShortcutRefusal {
    enum class Reason {
        usedByMenuItem,
        disallowed,   ///< the system does not report it
        usedBySystem, ///< or by another program; people may insist on it
    };

    Reason reason;
    QString menuItem{}; ///< its title, if it is one
};

/// The rules that a combination is checked against.
struct ShortcutRules {
    QList<MenuItem> menuItems{};
    QOperatingSystemVersion system = QOperatingSystemVersion::current();
    std::function<bool(const Shortcut&)> isReserved{};
};

/// The reason why a combination is refused; nothing if it is accepted.
[[nodiscard]] std::optional<ShortcutRefusal> refusalOf(const Shortcut& shortcut,
                                                       const ShortcutRules& rules);

} // namespace varno

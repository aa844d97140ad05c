#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <optional>

namespace varno {

class Keyboard;

/// A shortcut as the portal and we exchange it.
struct PortalShortcut {
    QString id;
    QVariantMap properties{};
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut);
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut);

/// The shortcuts in an argument; nothing if it is no list of them.
[[nodiscard]] std::optional<QList<PortalShortcut>> shortcutsIn(const QVariant& argument);

/// What we ask for. Its id follows from the combination, so it is the same at every start, and a
/// desktop that was told of another combination sees another shortcut. The key is one that
/// `xKeyCode` knows.
[[nodiscard]] PortalShortcut portalShortcut(int carbonKeyCode, int carbonModifiers,
                                            const Keyboard& keyboard);

} // namespace varno

Q_DECLARE_METATYPE(varno::PortalShortcut)

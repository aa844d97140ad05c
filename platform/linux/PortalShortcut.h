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

/// The shortcuts in the results of a request; nothing if they do not speak of any.
[[nodiscard]] std::optional<QList<PortalShortcut>> shortcutsIn(const QVariantMap& results);

/// What we ask for. Its id follows from the combination, so it is the same at every start, and a
/// desktop that was told of another combination sees another shortcut. Nothing if there is no such
/// key or modifier.
[[nodiscard]] std::optional<PortalShortcut> portalShortcut(int carbonKeyCode, int carbonModifiers,
                                                           const Keyboard& keyboard);

} // namespace varno

Q_DECLARE_METATYPE(varno::PortalShortcut)

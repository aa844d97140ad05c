#include "platform/linux/PortalShortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/KeyLabel.h"
#include "platform/linux/PortalKeyNames.h"

#include <QCoreApplication>

#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct ModifierName {
    int carbon = 0;
    QStringView name;
};

constexpr std::array modifierNames = {
    ModifierName{carbonModifier::control, u"CTRL"},
    ModifierName{carbonModifier::option, u"ALT"},
    ModifierName{carbonModifier::shift, u"SHIFT"},
    ModifierName{carbonModifier::command, u"LOGO"},
};

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

std::optional<QList<PortalShortcut>> shortcutsIn(const QVariant& argument)
{
    const auto list = argument.value<QDBusArgument>();
    if (list.currentSignature() != "a(sa{sv})"_L1)
        return std::nullopt;
    return qdbus_cast<QList<PortalShortcut>>(list);
}

PortalShortcut portalShortcut(int carbonKeyCode, int carbonModifiers, const Keyboard& keyboard)
{
    QString trigger;
    for (const ModifierName& modifier : modifierNames)
        if ((carbonModifiers & modifier.carbon) != 0)
            trigger += modifier.name.toString() + u'+';
    PortalShortcut shortcut{.id = u"key-%1-%2"_s.arg(carbonKeyCode).arg(carbonModifiers)};
    shortcut.properties.insert(u"description"_s,
                               u"%1 (%2)"_s.arg(QCoreApplication::applicationName(),
                                                pcName(carbonKeyCode, carbonModifiers, keyboard)));
    shortcut.properties.insert(u"preferred_trigger"_s,
                               trigger + keysymName(carbonKeyCode, keyboard));
    return shortcut;
}

} // namespace varno

#include "platform/linux/PortalShortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/linux/PortalKeyNames.h"

#include <QCoreApplication>
#include <QStringList>

#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct ModifierNames {
    int carbon = 0;
    QStringView trigger;
    QStringView shown;
};

constexpr std::array modifierNames = {
    ModifierNames{carbonModifier::control, u"CTRL", u"Ctrl"},
    ModifierNames{carbonModifier::option, u"ALT", u"Alt"},
    ModifierNames{carbonModifier::shift, u"SHIFT", u"Shift"},
    ModifierNames{carbonModifier::command, u"LOGO", u"Super"},
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
    QStringList trigger;
    QStringList shown;
    for (const ModifierNames& names : modifierNames) {
        if ((carbonModifiers & names.carbon) == 0)
            continue;
        trigger << names.trigger.toString();
        shown << names.shown.toString();
    }
    const QString key = keysymName(carbonKeyCode, keyboard);
    shown << (key.size() == 1 ? key.toUpper() : key);
    PortalShortcut shortcut{.id = u"key-%1-%2"_s.arg(carbonKeyCode).arg(carbonModifiers)};
    shortcut.properties.insert(
        u"description"_s, u"%1 (%2)"_s.arg(QCoreApplication::applicationName(), shown.join(u'+')));
    shortcut.properties.insert(u"preferred_trigger"_s, (trigger << key).join(u'+'));
    return shortcut;
}

} // namespace varno

#include "platform/linux/PlasmaShortcut.h"

#include "platform/CarbonModifiers.h"
#include "platform/KeyLabel.h"
#include "platform/linux/DesktopService.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QKeySequence>

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString path = u"/kglobalaccel"_s;
const QString interface = u"org.kde.KGlobalAccel"_s;
const QString componentInterface = u"org.kde.kglobalaccel.Component"_s;
const QString program = u"com.kelbrin.varno"_s; // the desktop file, for its icon
const QString programPath = u"/component/com_kelbrin_varno"_s;

enum AssignmentFlag : uint { present = 2, noAutoloading = 4, isDefault = 8 };

int qtKey(const DesktopHotKeyEvents::Wish& wish, const Keyboard& keyboard)
{
    QString name = pcName(wish.carbonKeyCode, wish.carbonModifiers, keyboard);
    name.replace(u"Super+"_s, u"Meta+"_s);
    const auto keys = QKeySequence::fromString(name, QKeySequence::PortableText);
    return keys.count() == 1 && keys[0].key() != Qt::Key_unknown ? keys[0].toCombined() : 0;
}

/// The first of them, which is mostly all there is, as we show our own.
QString labelOf(int key)
{
    const QKeyCombination combination = QKeyCombination::fromCombined(key);
    const Qt::KeyboardModifiers held = combination.keyboardModifiers();
    const int carbon = (held.testFlag(Qt::ControlModifier) ? carbonModifier::control : 0) |
                       (held.testFlag(Qt::AltModifier) ? carbonModifier::option : 0) |
                       (held.testFlag(Qt::ShiftModifier) ? carbonModifier::shift : 0) |
                       (held.testFlag(Qt::MetaModifier) ? carbonModifier::command : 0);
    return modifierSymbols(carbon) + QKeySequence(combination.key()).toString();
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const PlasmaKeys& row)
{
    argument.beginStructure();
    argument << row.keys;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PlasmaKeys& row)
{
    argument.beginStructure();
    argument >> row.keys;
    argument.endStructure();
    return argument;
}

const QString PlasmaShortcut::service = u"org.kde.kglobalaccel"_s;

PlasmaShortcut::PlasmaShortcut(const DesktopService& plasma, const DesktopHotKeyEvents::Wish& wish,
                               const Keyboard& keyboard)
    : m_bus(plasma.bus())
    , m_owner(plasma.owner())
    , m_action{program, u"key-%1-%2"_s.arg(wish.carbonKeyCode).arg(wish.carbonModifiers),
               QCoreApplication::applicationName(),
               PlasmaShortcut::tr("Open %1").arg(QCoreApplication::applicationName())}
    , m_key(qtKey(wish, keyboard))
{
    qDBusRegisterMetaType<PlasmaKeys>();
    qDBusRegisterMetaType<QList<PlasmaKeys>>();
    listen(path, interface, u"yourShortcutsChanged"_s, SLOT(takeChange(QDBusMessage)));
    listen(programPath, componentInterface, u"globalShortcutPressed"_s,
           SLOT(takePressed(QDBusMessage)));
    listen(programPath, componentInterface, u"globalShortcutReleased"_s,
           SLOT(takeReleased(QDBusMessage)));
    m_bus.send(call(u"doRegister"_s));
    assign(isDefault);
    assign(wish.isNew ? present | noAutoloading : present);
    if (wish.isNew) // of what it takes the place of, the settings keep nothing
        m_bus.send(
            QDBusMessage::createMethodCall(m_owner, programPath, componentInterface, u"cleanUp"_s));
}

PlasmaShortcut::~PlasmaShortcut()
{
    setPaused(true);
}

void PlasmaShortcut::setPaused(bool paused)
{
    if (paused)
        m_bus.send(call(u"setInactive"_s));
    else
        assign(present);
}

void PlasmaShortcut::listen(const QString& objectPath, const QString& ofInterface,
                            const QString& signal, const char* slot)
{
    m_bus.connect(QString(), objectPath, ofInterface, signal, this, slot);
}

QDBusMessage PlasmaShortcut::call(const QString& method) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_owner, path, interface, method);
    return call << m_action;
}

void PlasmaShortcut::assign(uint flags)
{
    QList<PlasmaKeys> keys;
    if (m_key != 0)
        keys << PlasmaKeys{{m_key, 0, 0, 0}};
    auto* answer = new QDBusPendingCallWatcher(
        m_bus.asyncCall(call(u"setShortcutKeys"_s) << QVariant::fromValue(keys) << flags), this);
    if ((flags & present) == 0)
        return;
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        take(answer->reply().arguments().value(0));
    });
}

void PlasmaShortcut::take(const QVariant& argument)
{
    const auto list = argument.value<QDBusArgument>();
    QList<PlasmaKeys> rows;
    if (list.currentSignature() == "a(ai)"_L1)
        rows = qdbus_cast<QList<PlasmaKeys>>(list);
    rows.removeIf([](const PlasmaKeys& row) { return row.keys.value(0) == 0; });
    const auto isAsked = [this](const PlasmaKeys& row) {
        return row.keys.value(0) == m_key && row.keys.value(1) == 0;
    };
    if (rows.isEmpty()) // somebody else has it, or the user wants none
        Q_EMIT answered({.isBound = false});
    else if (std::any_of(rows.cbegin(), rows.cend(), isAsked))
        Q_EMIT answered({});
    else
        Q_EMIT answered({.trigger = labelOf(rows.constFirst().keys.constFirst())});
}

void PlasmaShortcut::takeChange(const QDBusMessage& signal)
{
    const QStringList action = signal.arguments().value(0).toStringList();
    if (signal.service() == m_owner && action.mid(0, 2) == m_action.mid(0, 2))
        take(signal.arguments().value(1));
}

bool PlasmaShortcut::isOurs(const QDBusMessage& signal) const
{
    return signal.service() == m_owner && signal.arguments().value(1) == m_action.at(1);
}

void PlasmaShortcut::takePressed(const QDBusMessage& signal)
{
    if (isOurs(signal))
        Q_EMIT pressed(signal.arguments().value(2).toULongLong());
}

void PlasmaShortcut::takeReleased(const QDBusMessage& signal)
{
    if (isOurs(signal))
        Q_EMIT released(signal.arguments().value(2).toULongLong());
}

DesktopHotKeyEvents::Ask plasmaShortcuts(DesktopService& plasma, const Keyboard& keyboard)
{
    return [&plasma, &keyboard](const DesktopHotKeyEvents::Wish& wish) {
        return std::make_unique<PlasmaShortcut>(plasma, wish, keyboard);
    };
}

} // namespace varno

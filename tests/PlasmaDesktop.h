#pragma once

#include "platform/linux/PlasmaShortcut.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QMap>
#include <QSet>

namespace varno {

using namespace Qt::StringLiterals;

class PlasmaComponent : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kglobalaccel.Component")

public:
    int cleanings = 0;

public Q_SLOTS:
    bool cleanUp() { return ++cleanings > 0; }

Q_SIGNALS:
    void globalShortcutPressed(const QString&, const QString&, qlonglong);
    void globalShortcutReleased(const QString&, const QString&, qlonglong);
};

/// Does what Plasma's service for shortcuts was seen to do, for one program.
class PlasmaDesktop : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.KGlobalAccel")

public:
    QMap<QString, int> keys; ///< by action, as the user's settings have them
    QSet<QString> present;
    QSet<int> taken;
    QStringList titles;
    PlasmaComponent component;

    explicit PlasmaDesktop(QDBusConnection bus)
    {
        qDBusRegisterMetaType<PlasmaKeys>();
        qDBusRegisterMetaType<QList<PlasmaKeys>>();
        bus.registerObject(u"/kglobalaccel"_s, this, QDBusConnection::ExportAllContents);
        bus.registerObject(u"/component/com_kelbrin_varno"_s, &component,
                           QDBusConnection::ExportAllContents);
    }

    /// In the system settings.
    void choose(const QString& action, int key)
    {
        keys[action] = key;
        Q_EMIT yourShortcutsChanged({program, action, {}, {}}, rows(key));
    }
    void press(const QString& action)
    {
        Q_EMIT component.globalShortcutPressed(program, action, 4711);
        Q_EMIT component.globalShortcutReleased(program, action, 4712);
    }

public Q_SLOTS:
    void doRegister(const QStringList& action) { titles = action.mid(2); }
    void setInactive(const QStringList& action) { present.remove(action.value(1)); }
    QList<varno::PlasmaKeys> setShortcutKeys(const QStringList& action,
                                             const QList<varno::PlasmaKeys>& wanted, uint flags)
    {
        if (flags == 8 || message().signature() != "asa(ai)u"_L1) // the default, only to be shown
            return {};
        const int key = wanted.isEmpty() ? 0 : wanted.constFirst().keys.constFirst();
        if (flags == 6 || !keys.contains(action[1]))
            keys[action[1]] = taken.contains(key) ? 0 : key;
        present.insert(action[1]);
        return rows(keys[action[1]]);
    }

Q_SIGNALS:
    void yourShortcutsChanged(const QStringList&, const QList<varno::PlasmaKeys>&);

private:
    const QString program = u"com.kelbrin.varno"_s;

    static QList<PlasmaKeys> rows(int key) { return {PlasmaKeys{{key, 0, 0, 0}}}; }
};

} // namespace varno

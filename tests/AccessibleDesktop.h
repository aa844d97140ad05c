#pragma once

#include "tests/Patience.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcess>
#include <QStandardPaths>

namespace varno {

using namespace Qt::StringLiterals;

/// What a screen reader sees, asked of AT-SPI over its own bus, as a screen reader does.
class AccessibleDesktop {
public:
    /// An object of a program.
    struct Object {
        QString program; ///< its name on the bus
        QString path;
    };

    /// Empty where it is not installed.
    [[nodiscard]] static QString launcher()
    {
        return QStandardPaths::findExecutable(u"at-spi-bus-launcher"_s,
                                              {u"/usr/libexec"_s, u"/usr/lib/at-spi2-core"_s});
    }

    AccessibleDesktop()
    {
        m_launcher.start(launcher(), {u"--launch-immediately"_s});
        const QDBusConnection session = QDBusConnection::sessionBus();
        QTRY_VERIFY(session.interface()->isServiceRegistered(u"org.a11y.Bus"_s));
        const QDBusMessage reply = session.call(QDBusMessage::createMethodCall(
            u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s));
        QDBusConnection::connectToBus(reply.arguments().value(0).toString(), busName);
    }
    ~AccessibleDesktop()
    {
        QDBusConnection::disconnectFromBus(busName);
        m_launcher.terminate();
        m_launcher.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(AccessibleDesktop)

    /// The programs that have announced themselves.
    [[nodiscard]] QList<Object> programs() const
    {
        return children({u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s});
    }

    [[nodiscard]] QList<Object> children(const Object& object) const
    {
        QList<Object> children;
        const auto list =
            call(object, u"org.a11y.atspi.Accessible"_s, u"GetChildren"_s).value<QDBusArgument>();
        for (list.beginArray(); !list.atEnd();) {
            QDBusObjectPath path;
            Object child;
            list.beginStructure();
            list >> child.program >> path;
            list.endStructure();
            child.path = path.path();
            children.append(child);
        }
        list.endArray();
        return children;
    }

    /// Its role, its name or its text, and in brackets what else matters.
    [[nodiscard]] QString line(const Object& object) const
    {
        const QString role =
            call(object, u"org.a11y.atspi.Accessible"_s, u"GetRoleName"_s).toString();
        QString name = property(object, u"Name"_s);
        if (name.isEmpty())
            name = call(object, u"org.a11y.atspi.Text"_s, u"GetText"_s, {0, -1}).toString();
        const auto told = qdbus_cast<QMap<QString, QString>>(
            call(object, u"org.a11y.atspi.Accessible"_s, u"GetAttributes"_s));
        const QString level = told.value(u"level"_s); // newer versions of the toolkit tell it there
        const QString more =
            level.isEmpty() ? property(object, u"Description"_s) : u"Level "_s + level;
        return role + u": "_s + name +
               (more.isEmpty() || more == name ? QString() : u" ["_s + more + u']') +
               (hasState(object, selected) ? u" (selected)"_s : QString());
    }

    /// The lines of all that is on show in an object, each behind the one that it is in, but for
    /// what only holds others.
    [[nodiscard]] QStringList lines(const Object& object) const
    {
        QStringList all;
        for (const Object& child : children(object)) {
            if (!hasState(child, showing))
                continue;
            if (const QString itself = line(child); !itself.startsWith("filler:"_L1))
                all.append(itself);
            all += lines(child);
        }
        return all;
    }

    /// Presses what such a line tells of; whether it is on show.
    [[nodiscard]] bool press(const QString& itsLine, const Object& in) const
    {
        for (const Object& child : children(in)) {
            if (!hasState(child, showing))
                continue;
            if (press(itsLine, child))
                return true;
            if (line(child) == itsLine)
                return call(child, u"org.a11y.atspi.Action"_s, u"DoAction"_s, {0}).toBool();
        }
        return false;
    }

private:
    static constexpr auto busName = "accessibility"_L1;
    static constexpr int selected = 23; // by AT-SPI
    static constexpr int showing = 25;

    bool hasState(const Object& object, int state) const
    {
        quint32 states = 0;
        const auto list =
            call(object, u"org.a11y.atspi.Accessible"_s, u"GetState"_s).value<QDBusArgument>();
        list.beginArray();
        list >> states;
        list.endArray();
        return (states >> state & 1U) != 0;
    }

    QVariant call(const Object& object, const QString& interface, const QString& method,
                  const QVariantList& arguments = {}) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(object.program, object.path, interface, method);
        message.setArguments(arguments);
        const QDBusMessage reply = QDBusConnection(busName).call(message, QDBus::Block, patience);
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
    }
    QString property(const Object& object, const QString& name) const
    {
        return call(object, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                    {u"org.a11y.atspi.Accessible"_s, name})
            .value<QDBusVariant>()
            .variant()
            .toString();
    }

    QProcess m_launcher;
};

} // namespace varno

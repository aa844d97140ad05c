#pragma once

#include "platform/linux/PortalShortcut.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QSet>
#include <QString>

class QDBusObjectPath;

namespace varno {

class PortalConnection;

/// Some shortcuts, bound by the desktop as long as it lives. They cannot be changed: others want
/// another session.
class PortalShortcutSession : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    /// Begins at once. `portal` has an owner, and outlives it.
    PortalShortcutSession(PortalConnection& portal, QList<PortalShortcut> shortcuts);
    ~PortalShortcutSession() override;

    /// Of those that the desktop was asked for and has not refused.
    [[nodiscard]] QSet<QString> ids() const;

Q_SIGNALS:
    /// By the user, by a desktop that cannot do it, or later, when the desktop ends the session.
    /// Whoever is told may destroy this, now and by the signals below.
    void refused(const QSet<QString>& ids);
    void activated(const QString& id, quint64 time);
    void deactivated(const QString& id, quint64 time);

private Q_SLOTS:
    void takeClosed();
    void takeActivated(const QDBusObjectPath& session, const QString& id, qulonglong time);
    void takeDeactivated(const QDBusObjectPath& session, const QString& id, qulonglong time);

private:
    using Step = void (PortalShortcutSession::*)(bool granted, const QVariantMap& results);

    void create(PortalConnection& portal);
    void request(const QString& method, const QVariantList& arguments, Step next);
    void listen(const QString& signal, const char* slot);
    [[nodiscard]] bool isOurs(const QDBusObjectPath& session) const;
    void takeSession(const QString& handle);
    void takeListed(bool granted, const QVariantMap& results);
    /// Bound ones need no binding, on the one desktop that has bound them already.
    void bindUnlessBound();
    void bind();
    void takeBound(bool granted, const QVariantMap& results);
    void refuseAllBut(const QSet<QString>& bound);

    const PortalConnection& m_portal;
    QDBusConnection m_bus;
    QString m_owner;
    QList<PortalShortcut> m_shortcuts;
    QString m_handle; ///< the session's object; empty before there is one
};

} // namespace varno

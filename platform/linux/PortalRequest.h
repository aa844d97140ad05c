#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QVariant>

namespace varno {

class PortalConnection;

/// A call of the portal that is answered later, mostly by the user, through an object made for that
/// one call. It deletes itself once it is answered; destroyed before, it is taken back.
class PortalRequest : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    /// `portal` has an owner.
    PortalRequest(const PortalConnection& portal, QObject* parent);
    ~PortalRequest() override;

    /// To be called once. `options` are the last argument of the call.
    void send(const QString& interface, const QString& method, const QVariantList& arguments,
              QVariantMap options = {});

    /// A name for what a call makes, that no other has.
    [[nodiscard]] static QString newToken();

Q_SIGNALS:
    /// `granted` is false if the user said no, and if the portal cannot do it.
    void answered(bool granted, const QVariantMap& results);

private Q_SLOTS:
    void takeResponse(uint response, const QVariantMap& results);

private:
    void answer(bool granted, const QVariantMap& results);

    QDBusConnection m_bus;
    QString m_owner;
    QString m_objectPath; ///< empty when there is nothing to take back
};

} // namespace varno

#pragma once

#include "platform/LaunchContext.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace varno {

/// The program's name on the session bus, which one program at a time has.
class ApplicationService final : public QObject {
    Q_OBJECT

public:
    enum class Claim : quint8 {
        mine,       ///< this is the first one, or there is no bus to ask on
        handedOver, ///< another one runs, and has been asked for what this one was started for
        silent,     ///< another one runs, and does not answer
    };

    /// What a desktop, or a second start, may ask for.
    enum class Action : quint8 { show, toggle, newSearch, settings, search, quit };
    struct Request {
        Action action = Action::show;
        QString text{}; ///< to search for, of that action only
        UserAction user{};
    };

    /// `busName` is that name; the path of the object is derived from it.
    explicit ApplicationService(const QString& busName, QObject* parent = nullptr);

    /// Waits for the bus, and at most five seconds for the other program. What is asked of this one
    /// comes from the event loop.
    [[nodiscard]] Claim claim(const LaunchContext& context);

Q_SIGNALS:
    void requested(const varno::ApplicationService::Request& request);

private:
    [[nodiscard]] QDBusMessage callOfTheOther(const LaunchContext& context) const;
    [[nodiscard]] bool handOver(const LaunchContext& context) const;

    QString m_busName;
    QString m_objectPath;
};

/// The interface by which desktops start programs.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(ApplicationService& service);

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// Ignores names that it does not know.
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    ApplicationService& m_service;
};

} // namespace varno

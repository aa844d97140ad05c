#pragma once

#include <QDBusAbstractAdaptor>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace varno {

/// The program's name on the session bus, which one program at a time has.
class ApplicationService final : public QObject {
    Q_OBJECT

public:
    enum class Claim {
        mine,    ///< this is the first one, or there is no bus to ask on
        toggled, ///< another one runs, and has been asked to show or hide its panel
        silent,  ///< another one runs, and does not answer
    };

    /// `busName` is that name; the path of the object is derived from it.
    explicit ApplicationService(const QString& busName, QObject* parent = nullptr);

    /// Waits for the bus, and at most five seconds for the other program.
    [[nodiscard]] Claim claim();

Q_SIGNALS:
    void showRequested();
    void toggleRequested();

private:
    [[nodiscard]] Claim toggleTheOther() const;

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
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    ApplicationService& m_service;
};

} // namespace varno

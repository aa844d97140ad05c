#pragma once

#include "platform/Background.h"
#include "platform/Inbox.h"
#include "platform/PreferencesStore.h"

#include <QVariantMap>

namespace varno {

/// Preferences in the user's domain of a program, as the system's own programs keep theirs:
/// Booleans, strings and arrays of strings, which `defaults` and other programs may set too.
class DefaultsPreferencesStore final : public PreferencesStore {
    Q_OBJECT

public:
    /// Reads the domain, which is named by a program's bundle identifier.
    explicit DefaultsPreferencesStore(QString domain = QStringLiteral("com.kelbrin.varno"));

    [[nodiscard]] bool contains(const QString& key) const override
    {
        return m_values.contains(key);
    }
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override
    {
        return valueOf<bool>(m_values.value(key));
    }
    [[nodiscard]] std::optional<QString> string(const QString& key) const override
    {
        return valueOf<QString>(m_values.value(key));
    }
    [[nodiscard]] std::optional<QStringList> stringArray(const QString& key) const override
    {
        return valueOf<QStringList>(m_values.value(key));
    }
    void setBoolean(const QString& key, bool value) override { set(key, value); }
    void setString(const QString& key, const QString& value) override { set(key, value); }
    void setStringArray(const QString& key, const QStringList& value) override { set(key, value); }
    void editStringArray(const QString& key, const ListEdit& edit) override;
    void remove(const QString& key) override;
    void refresh() override;
    void removeLeftovers() override {}
    void waitForDone() override { m_lane.waitForDone(); }

private:
    /// The value by the one that is there; an invalid one where there is none.
    using Edit = std::function<QVariant(const QVariant&)>;

    template <typename Value>
    static std::optional<Value> valueOf(const QVariant& value)
    {
        return value.typeId() == qMetaTypeId<Value>() ? std::optional(value.value<Value>())
                                                      : std::nullopt;
    }

    void set(const QString& key, const QVariant& value);
    void change(const QString& key, const Edit& edit);
    void tell(int changes);
    void take(int changes, const QVariantMap& values);
    [[nodiscard]] QVariantMap read() const;

    const QString m_domain;
    QVariantMap m_values; ///< of the domain, with all changes; a value of another type is invalid
    int m_changes = 0;
    Inbox m_inbox;
    Lane m_lane; ///< last, so that it ends first
};

} // namespace varno

#pragma once

#include "platform/PreferencesStore.h"

#include <QVariantMap>

namespace varno {

/// Preferences in memory, open to inspection.
class FakePreferencesStore final : public PreferencesStore {
public:
    QVariantMap values;

    [[nodiscard]] bool contains(const QString& key) const override { return values.contains(key); }
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override
    {
        return value<bool>(key);
    }
    [[nodiscard]] std::optional<QString> string(const QString& key) const override
    {
        return value<QString>(key);
    }
    [[nodiscard]] std::optional<QStringList> stringArray(const QString& key) const override
    {
        return value<QStringList>(key);
    }

    void setBoolean(const QString& key, bool value) override { values[key] = value; }
    void setString(const QString& key, const QString& value) override { values[key] = value; }
    void setStringArray(const QString& key, const QStringList& value) override
    {
        values[key] = value;
    }
    void remove(const QString& key) override { values.remove(key); }
    void editStringArray(const QString& key, const ListEdit& edit) override
    {
        values[key] = edit(stringArray(key).value_or(QStringList()));
    }
    void refresh() override {}
    void removeLeftovers() override {}
    void waitForDone() override {}

private:
    template <typename Value>
    [[nodiscard]] std::optional<Value> value(const QString& key) const
    {
        const QVariant found = values.value(key);
        return found.typeId() == QMetaType::fromType<Value>().id()
                   ? std::optional(found.value<Value>())
                   : std::nullopt;
    }
};

} // namespace varno

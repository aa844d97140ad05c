#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace varno {

/// The user's key/value preferences, kept between runs. Main thread only.
///
/// Keys are words of ASCII letters, digits and underscores. A value that is missing or of another
/// type reads as absent. Setting writes through at once, that one value alone: what other programs
/// have set stays. What cannot be written, silently, or is so long that it could not be read again,
/// is kept in memory, and tried again with the next value that is set.
class PreferencesStore {
public:
    virtual ~PreferencesStore() = default;

    /// Whether there is a value, of whatever type.
    [[nodiscard]] virtual bool contains(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<QStringList> stringArray(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setString(const QString& key, const QString& value) = 0;
    virtual void setStringArray(const QString& key, const QStringList& value) = 0;
    virtual void remove(const QString& key) = 0;

    /// Takes in what other programs have set, as setting does too. Next to nothing when that is
    /// nothing.
    virtual void refresh() = 0;

    /// Removes earlier states of the store that were set aside or left unfinished.
    virtual void removeLeftovers() = 0;
};

} // namespace varno

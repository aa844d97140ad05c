#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace varno {

/// The user's key/value preferences, kept between runs. Main thread only.
///
/// Keys are words of ASCII letters, digits and underscores. A value that is missing or of another
/// type reads as absent. A value that is set is there at once, and is written in the background, in
/// order, that one value alone: what other programs have set stays. What cannot be written,
/// silently, or is so long that it could not be read again, is kept in memory, and tried again with
/// the next value that is set. The end of the store waits for what is being written.
class PreferencesStore : public QObject {
    Q_OBJECT

public:
    /// Whether there is a value, of whatever type.
    [[nodiscard]] virtual bool contains(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<QStringList> stringArray(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setString(const QString& key, const QString& value) = 0;
    virtual void setStringArray(const QString& key, const QStringList& value) = 0;
    virtual void remove(const QString& key) = 0;

    /// Changes a list, which may be absent, both as it is here and as the file has it by then. Any
    /// thread may call `edit`.
    using ListEdit = std::function<QStringList(QStringList list)>;
    virtual void editStringArray(const QString& key, const ListEdit& edit) = 0;

    /// Takes in what other programs have set, as setting does too; `changed` follows if that is
    /// anything.
    virtual void refresh() = 0;

    /// Removes earlier states of the store that were set aside or left unfinished.
    virtual void removeLeftovers() = 0;

    /// Blocks until all that was set has been written.
    virtual void waitForDone() = 0;

Q_SIGNALS:
    /// The file held other values than those that were here.
    void changed();
};

} // namespace varno

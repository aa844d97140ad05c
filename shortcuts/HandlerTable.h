#pragma once

#include <QHash>
#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace varno {

/// A table of actions by name, which run in the order in which they were added. An action may
/// change or destroy the table; actions that it removes do not run.
class HandlerTable {
public:
    using Action = std::function<void()>;
    using Id = quint64;

    HandlerTable() = default;
    ~HandlerTable();
    Q_DISABLE_COPY_MOVE(HandlerTable)

    Id add(const QString& name, Action action);
    void remove(const QString& name, Id id);
    void removeAll(const QString& name);
    [[nodiscard]] bool contains(const QString& name) const;
    void run(const QString& name);

private:
    struct Entries {
        QHash<QString, std::map<Id, Action>> actions;
        Id lastId = 0;
    };

    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>();
};

} // namespace varno

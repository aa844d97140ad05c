#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

namespace varno {

/// A table of actions by name, which run in the order in which they were added. An action may
/// change or destroy the table; actions that it removes do not run.
class HandlerTable {
public:
    using Action = std::function<void()>;
    using Handle = std::weak_ptr<const Action>;

    Handle add(const QString& name, Action action);
    void remove(const QString& name, const Handle& handle);
    void removeAll(const QString& name) { m_actions.remove(name); }
    [[nodiscard]] bool contains(const QString& name) const { return m_actions.contains(name); }
    void run(const QString& name) const;

private:
    QHash<QString, QList<std::shared_ptr<const Action>>> m_actions;
};

} // namespace varno

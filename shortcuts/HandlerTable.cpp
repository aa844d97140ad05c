#include "shortcuts/HandlerTable.h"

#include <utility>
#include <vector>

namespace varno {

HandlerTable::Handle HandlerTable::add(const QString& name, Action action)
{
    return m_actions[name].emplaceBack(std::make_shared<const Action>(std::move(action)));
}

void HandlerTable::remove(const QString& name, const Handle& handle)
{
    QList<std::shared_ptr<const Action>>& actions = m_actions[name];
    actions.removeAll(handle.lock());
    if (actions.isEmpty())
        m_actions.remove(name);
}

void HandlerTable::run(const QString& name) const
{
    // Their handles: what one of them removes, or destroys with the table, is gone for the rest.
    std::vector<Handle> handles;
    for (const auto& action : m_actions.value(name))
        handles.emplace_back(action);
    for (const Handle& handle : handles)
        if (const auto action = handle.lock())
            (*action)();
}

} // namespace varno

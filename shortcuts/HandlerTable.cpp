#include "shortcuts/HandlerTable.h"

#include <utility>
#include <vector>

namespace varno {

HandlerTable::~HandlerTable()
{
    m_entries->actions.clear(); // what is running sees it
}

HandlerTable::Id HandlerTable::add(const QString& name, Action action)
{
    const Id id = ++m_entries->lastId;
    m_entries->actions[name].emplace(id, std::move(action));
    return id;
}

void HandlerTable::remove(const QString& name, Id id)
{
    const auto found = m_entries->actions.find(name);
    if (found == m_entries->actions.end())
        return;
    found->erase(id);
    if (found->empty())
        m_entries->actions.erase(found);
}

void HandlerTable::removeAll(const QString& name)
{
    m_entries->actions.remove(name);
}

bool HandlerTable::contains(const QString& name) const
{
    return m_entries->actions.contains(name);
}

void HandlerTable::run(const QString& name)
{
    const std::shared_ptr<Entries> entries = m_entries;
    std::vector<Id> ids;
    for (const auto& [id, action] : entries->actions.value(name))
        ids.push_back(id);
    for (const Id id : ids) {
        const auto ofName = entries->actions.constFind(name);
        if (ofName == entries->actions.constEnd())
            return;
        if (const auto found = ofName->find(id); found != ofName->end())
            Action(found->second)(); // a copy: it may remove itself
    }
}

} // namespace varno

#include "core/Session.h"

#include <algorithm>

namespace varno {

ReferenceSeconds toReferenceSeconds(const QDateTime& date)
{
    constexpr qint64 referenceEpoch = 978307200; // 2001-01-01 in seconds since 1970
    return static_cast<double>(date.toMSecsSinceEpoch() - referenceEpoch * 1000) / 1000.0;
}

const Page* Session::currentPage() const
{
    return navigationHistory.isEmpty() ? nullptr : page(navigationHistory.constLast());
}

const Page* Session::rootPage() const
{
    return navigationHistory.isEmpty() ? nullptr : page(navigationHistory.constFirst());
}

const Page* Session::page(const QUuid& pageId) const
{
    const auto found = pages.constFind(pageId);
    return found == pages.cend() ? nullptr : &*found;
}

Page* Session::mutablePage(const QUuid& pageId)
{
    const auto found = pages.find(pageId);
    return found == pages.end() ? nullptr : &*found;
}

void Session::push(const Page& page)
{
    pages.insert(page.id, page);
    navigationHistory.append(page.id);
}

void Session::revisit(const QUuid& pageId)
{
    if (pages.contains(pageId))
        navigationHistory.append(pageId);
}

void Session::cutHistoryAfter(const QUuid& pageId)
{
    if (const qsizetype last = navigationHistory.lastIndexOf(pageId); last >= 0)
        navigationHistory.resize(last + 1);
}

void Session::remove(const QUuid& pageId)
{
    navigationHistory.removeAll(pageId);
    pages.remove(pageId);
}

const Page* Session::cachedSectionPage(const QUuid& parentId, const QString& sectionName) const
{
    const auto found = std::find_if(pages.cbegin(), pages.cend(), [&](const Page& page) {
        return page.parentPageId == parentId && page.parentSectionName == sectionName &&
               !page.content.isEmpty();
    });
    return found == pages.cend() ? nullptr : &*found;
}

} // namespace varno

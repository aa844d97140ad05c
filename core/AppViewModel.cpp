#include "core/AppViewModel.h"

#include "core/EntryText.h"
#include "core/Prompts.h"

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr qsizetype mostSessions = 100;
constexpr qsizetype mostSearches = 15;
constexpr int daysKept = 30;

ReferenceSeconds toReferenceSeconds(const QDateTime& date)
{
    constexpr qint64 referenceEpoch = 978307200; // 2001-01-01 in seconds since 1970
    return static_cast<double>(date.toMSecsSinceEpoch() - referenceEpoch * 1000) / 1000.0;
}

/// For `removeIf`: whether a text equals `query` but for its case.
auto sameAs(const QString& query)
{
    return [lowered = query.toLower()](const QString& other) { return other.toLower() == lowered; };
}

auto sessionFor(const QString& query)
{
    return [same = sameAs(query)](const Session& session) { return same(session.rootQuery); };
}

template <typename Element>
void prependWithLimit(QList<Element>& list, const Element& element, qsizetype limit)
{
    list.prepend(element);
    if (list.size() > limit)
        list.resize(limit);
}

} // namespace

AppViewModel::AppViewModel(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_preferences(readPreferences(m_dependencies.preferences))
{
    loadSessionHistory();
}

const Page* AppViewModel::currentPage() const
{
    return m_session ? m_session->currentPage() : nullptr;
}

void AppViewModel::setShowingSettings(bool showing)
{
    set(m_isShowingSettings, showing, Change::isShowingSettings);
    publish();
}

void AppViewModel::setShowingFind(bool showing)
{
    set(m_isShowingFind, showing, Change::isShowingFind);
    publish();
}

void AppViewModel::setWebSearchEnabled(bool enabled)
{
    m_dependencies.preferences.setBoolean(preferenceKey::webSearchEnabled, enabled);
    set(m_preferences.webSearchEnabled, enabled, Change::webSearchEnabled);
    publish();
}

void AppViewModel::setAIModel(AIModel model)
{
    m_dependencies.preferences.setString(preferenceKey::aiModel, rawValue(model));
    set(m_preferences.aiModel, model, Change::aiModel);
    publish();
}

void AppViewModel::setFontSize(FontSize size)
{
    m_dependencies.preferences.setString(preferenceKey::fontSize, rawValue(size));
    set(m_preferences.fontSize, size, Change::fontSize);
    publish();
}

void AppViewModel::setTheme(AppTheme theme)
{
    m_dependencies.preferences.setString(preferenceKey::theme, rawValue(theme));
    set(m_preferences.theme, theme, Change::theme);
    publish();
}

void AppViewModel::setImagesEnabled(bool enabled)
{
    set(m_preferences.imagesEnabled, enabled, Change::imagesEnabled);
    publish();
}

void AppViewModel::search(const QString& query)
{
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return;
    saveCurrentSessionToHistory();
    cancelActiveStreams();
    recordSearch(trimmed);
    if (const Session* saved = savedSession(trimmed))
        reopen(*saved);
    else
        startEntry(trimmed);
    publish();
}

void AppViewModel::reopen(const Session& saved)
{
    const Page& root = *saved.rootPage();
    set(m_streamingTOC, root.tableOfContents, Change::streamingTOC);
    set(m_streamingTitle, root.title, Change::streamingTitle);
    set(m_streamingContent, root.content, Change::streamingContent);
    set(m_isShowingEntry, true, Change::isShowingEntry);
    set(m_session, saved, Change::session);
}

void AppViewModel::startEntry(const QString& query)
{
    set(m_errorMessage, std::nullopt, Change::errorMessage);
    set(m_streamingTOC, QStringList(), Change::streamingTOC);
    set(m_tocIsLoading, false, Change::tocIsLoading);

    Page root;
    root.id = QUuid::createUuid();
    root.title = capitalised(query);
    root.entryType = detectEntryType(query);

    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = query;
    session.createdAt = toReferenceSeconds(m_dependencies.now());
    session.push(root);

    set(m_session, std::move(session), Change::session);
    set(m_isShowingEntry, true, Change::isShowingEntry);
    streamPage(root.id, root.entryType, entryPrompt(root.entryType, query), root.title);
}

void AppViewModel::clearHistory()
{
    set(m_preferences.searchHistory, QStringList(), Change::searchHistory);
    m_dependencies.preferences.setStringArray(preferenceKey::searchHistory, {});
    sessionHistory().clear();
    m_dependencies.history.save({});
    publish();
}

void AppViewModel::prepareToQuit()
{
    saveCurrentSessionToHistory();
    m_dependencies.history.waitForDone();
}

void AppViewModel::loadSessionHistory()
{
    m_oldestKept = toReferenceSeconds(m_dependencies.now().addDays(-daysKept));
    m_loadedHistory = m_dependencies.history.load();
}

QList<Session>& AppViewModel::sessionHistory()
{
    if (!m_sessionHistory) {
        m_sessionHistory = std::exchange(m_loadedHistory, {}).get();
        m_sessionHistory->removeIf(
            [this](const Session& session) { return session.createdAt < m_oldestKept; });
    }
    return *m_sessionHistory;
}

void AppViewModel::saveCurrentSessionToHistory()
{
    const Page* root = m_session ? m_session->rootPage() : nullptr;
    if (!root || root->content.isEmpty())
        return;
    QList<Session>& history = sessionHistory();
    history.removeIf(sessionFor(m_session->rootQuery));
    prependWithLimit(history, *m_session, mostSessions);
    m_dependencies.history.save(history);
}

void AppViewModel::recordSearch(const QString& query)
{
    QStringList searches = m_preferences.searchHistory;
    searches.removeIf(sameAs(query));
    prependWithLimit(searches, query, mostSearches);
    m_dependencies.preferences.setStringArray(preferenceKey::searchHistory, searches);
    set(m_preferences.searchHistory, std::move(searches), Change::searchHistory);
}

const Session* AppViewModel::savedSession(const QString& query)
{
    const QList<Session>& history = sessionHistory();
    const auto found = std::find_if(history.begin(), history.end(), sessionFor(query));
    if (found == history.end())
        return nullptr;
    const Page* root = found->rootPage();
    return root && !root->content.isEmpty() ? &*found : nullptr;
}

void AppViewModel::publish()
{
    if (const Changes changes = std::exchange(m_pendingChanges, {}))
        emit changed(changes);
}

const ModelService& AppViewModel::service() const
{
    return details(m_preferences.aiModel).provider == Provider::google ? m_dependencies.gemini
                                                                       : m_dependencies.claude;
}

Page* AppViewModel::sessionPage(const QUuid& id)
{
    return m_session ? m_session->mutablePage(id) : nullptr;
}

} // namespace varno

#include "core/AppViewModel.h"

#include "core/EntryText.h"
#include "core/Prompts.h"

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr qsizetype mostSearches = 15;

/// Far more than the search field takes; only a model's topic may be longer. All searches together
/// are smaller than a preferences file may be.
constexpr qsizetype longestRecordedSearch = 32767;

} // namespace

AppViewModel::AppViewModel(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_preferences(readPreferences(m_dependencies.preferences))
{
    loadSessionHistory();
    connect(&m_dependencies.history, &HistoryStore::wasRead, this, [this] {
        m_pendingChanges |= Change::savedEntries;
        openSearched();
        publish();
    });
    connect(&m_dependencies.preferences, &PreferencesStore::changed, this, [this] {
        takeStoredSearches();
        publish();
    });
}

AppViewModel::~AppViewModel()
{
    dropPreparation();
}

const Page* AppViewModel::currentPage() const
{
    return m_session ? m_session->currentPage() : nullptr;
}

QStringList AppViewModel::savedEntries(const QString& typed, qsizetype most) const
{
    return m_dependencies.history.sessions().matching(typed, most);
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
    dropPreparation();
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

void AppViewModel::prepareSearch()
{
    if (!m_preparationEnd.hasExpired())
        return;
    m_preparation = {};
    m_preparationEnd = QDeadlineTimer(ModelService::preparedFor);
    service().prepare(m_preparation.get_token());
}

void AppViewModel::dropPreparation()
{
    m_preparation.request_stop();
    m_preparationEnd = {};
}

void AppViewModel::search(const QString& query)
{
    // 1. A blank query is ignored.
    const QString trimmed = query.trimmed();
    if (trimmed.isEmpty())
        return;
    // 2. The open session is saved, and what streams for it cancelled.
    saveCurrentSessionToHistory();
    cancelActiveStreams();
    // 3. The query becomes the latest search.
    recordSearch(trimmed);
    // 4. A saved session with a text is reopened, or else a new entry started, once the history has
    // been read.
    m_searchInWaiting = trimmed;
    m_dependencies.history.read();
    if (m_dependencies.history.isRead())
        openSearched();
    publish();
}

/// The second half of a search, once the history is there to be looked into.
void AppViewModel::openSearched()
{
    const QString query = std::exchange(m_searchInWaiting, {});
    if (query.isEmpty())
        return;
    if (const Session* saved = savedSession(query))
        reopen(*saved);
    else
        startEntry(query);
}

void AppViewModel::reopen(const Session& saved)
{
    dropPreparation();
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
    m_pageBeforeWriting = root;
    streamPage(root.id, root.entryType, entryPrompt(root.entryType, query), root.title);
}

void AppViewModel::clearHistory()
{
    set(m_preferences.searchHistory, QStringList(), Change::searchHistory);
    m_dependencies.preferences.setStringArray(preferenceKey::searchHistory, {});
    m_dependencies.preferences.removeLeftovers();
    m_dependencies.history.clear();
    m_sessionAtClearing = m_session ? m_session->id : QUuid();
    publish();
}

void AppViewModel::refreshHistory()
{
    m_dependencies.history.refresh();
    m_dependencies.preferences.refresh();
}

void AppViewModel::prepareToQuit()
{
    discardUnfinishedWriting();
    if (m_session && m_session->id != m_sessionAtClearing)
        saveCurrentSessionToHistory();
    m_dependencies.history.waitForDone();
    m_dependencies.preferences.waitForDone();
}

void AppViewModel::loadSessionHistory()
{
    m_dependencies.history.setOldestKept(SessionHistory::oldestKept(m_dependencies.now()));
}

void AppViewModel::saveCurrentSessionToHistory()
{
    const Page* root = m_session ? m_session->rootPage() : nullptr;
    if (!root || root->content.isEmpty())
        return;
    m_dependencies.history.put(*m_session);
    m_sessionAtClearing = QUuid();
}

/// Puts a page whose text or contents are still coming back to what it was; a section that was
/// never written goes.
void AppViewModel::discardUnfinishedWriting()
{
    const Page& before = m_pageBeforeWriting;
    if (Page* page = sessionPage(before.id)) {
        if (m_isStreaming && before.parentPageId && before.content.isEmpty())
            m_session->remove(before.id);
        else if (m_isStreaming)
            *page = before;
        else if (m_tocIsLoading)
            page->tableOfContents = before.tableOfContents;
    }
    cancelActiveStreams();
}

void AppViewModel::recordSearch(const QString& query)
{
    if (query.size() > longestRecordedSearch)
        return;
    m_dependencies.preferences.editStringArray(
        preferenceKey::searchHistory, [query](QStringList searches) {
            searches.removeIf([lowered = query.toLower()](const QString& other) {
                return other.toLower() == lowered;
            });
            searches.prepend(query);
            return searches.first(std::min(searches.size(), mostSearches));
        });
    takeStoredSearches();
}

/// Those of other programs on the same preferences too.
void AppViewModel::takeStoredSearches()
{
    QStringList searches = m_dependencies.preferences.stringArray(preferenceKey::searchHistory)
                               .value_or(QStringList());
    if (searches != searchHistory())
        set(m_preferences.searchHistory, std::move(searches), Change::searchHistory);
}

const Session* AppViewModel::savedSession(const QString& query) const
{
    const Session* saved = m_dependencies.history.sessions().find(query);
    const Page* root = saved ? saved->rootPage() : nullptr;
    return root && !root->content.isEmpty() ? saved : nullptr;
}

void AppViewModel::publish()
{
    if (const Changes changes = std::exchange(m_pendingChanges, {}))
        Q_EMIT changed(changes);
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

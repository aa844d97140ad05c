#pragma once

#include "core/EntryStream.h"
#include "core/HistoryStore.h"
#include "core/ModelService.h"
#include "core/Preferences.h"
#include "core/Session.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace varno {

/// The one controller: owns all state that screens show, runs searches, streams and navigation, and
/// keeps both histories. Main thread only.
///
/// Screens read the state and call the operations. Each operation changes the state completely
/// before it announces anything, so a screen may call any operation, or destroy the controller,
/// from within an announcement.
class AppViewModel final : public QObject {
    Q_OBJECT

public:
    /// All of these outlive the controller.
    struct Dependencies {
        PreferencesStore& preferences;
        HistoryStore& history;
        const ModelService& claude;
        const ModelService& gemini;
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
    };

    /// The state that an announcement says has changed.
    enum class Change : quint32 {
        isShowingEntry = 1U << 0U,
        isShowingSettings = 1U << 1U,
        isShowingFind = 1U << 2U,
        isStreaming = 1U << 3U,
        streamingTitle = 1U << 4U,
        streamingContent = 1U << 5U, ///< other text than before
        streamingPiece = 1U << 6U,   ///< more text at the end of `streamingContent` and of its page
        streamingTOC = 1U << 7U,
        tocIsLoading = 1U << 8U,
        errorMessage = 1U << 9U,
        session = 1U << 10U,
        webSearchEnabled = 1U << 11U,
        aiModel = 1U << 12U,
        searchHistory = 1U << 13U,
        fontSize = 1U << 14U,
        theme = 1U << 15U,
        imagesEnabled = 1U << 16U,
        savedEntries = 1U << 17U, ///< they have been read
    };
    Q_DECLARE_FLAGS(Changes, Change)

    /// Reads the preferences. The saved sessions are read at the first search, or by
    /// `refreshHistory`.
    explicit AppViewModel(Dependencies dependencies);
    ~AppViewModel() override;
    Q_DISABLE_COPY_MOVE(AppViewModel)

    // State. References are good until the next operation; a copy of the session or of its text
    // that is kept while an entry streams makes every piece copy the page.
    [[nodiscard]] bool isShowingEntry() const { return m_isShowingEntry; }
    [[nodiscard]] bool isShowingSettings() const { return m_isShowingSettings; }
    [[nodiscard]] bool isShowingFind() const { return m_isShowingFind; }
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    [[nodiscard]] const QString& streamingTitle() const { return m_streamingTitle; }
    [[nodiscard]] const QString& streamingContent() const { return m_streamingContent; }
    [[nodiscard]] const QStringList& streamingTOC() const { return m_streamingTOC; }
    [[nodiscard]] bool tocIsLoading() const { return m_tocIsLoading; }
    [[nodiscard]] const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    [[nodiscard]] const std::optional<Session>& session() const { return m_session; }
    [[nodiscard]] bool webSearchEnabled() const { return m_preferences.webSearchEnabled; }
    [[nodiscard]] AIModel aiModel() const { return m_preferences.aiModel; }
    [[nodiscard]] const QStringList& searchHistory() const { return m_preferences.searchHistory; }
    [[nodiscard]] FontSize fontSize() const { return m_preferences.fontSize; }
    [[nodiscard]] AppTheme theme() const { return m_preferences.theme; }
    [[nodiscard]] bool imagesEnabled() const { return m_preferences.imagesEnabled; }

    /// The queries of the saved entries that match what is typed; see `SessionHistory::matching`.
    /// `search` opens them without a request.
    [[nodiscard]] QStringList savedEntries(const QString& typed, qsizetype most) const;

    /// The page of the open session that is shown; null when there is none.
    [[nodiscard]] const Page* currentPage() const;

    void setShowingSettings(bool showing);
    void setShowingFind(bool showing);

    // Each assignment is stored at once; that of `imagesEnabled` never is.
    void setWebSearchEnabled(bool enabled);
    void setAIModel(AIModel model);
    void setFontSize(FontSize size);
    void setTheme(AppTheme theme);
    void setImagesEnabled(bool enabled);

    /// Says that the user is typing a query and that there is a key for the chosen model: the
    /// service prepares for it, for a while. More calls than one do no harm.
    void prepareSearch();
    /// Says that no query is to be expected.
    void dropPreparation();

    /// Starts a new entry, or reopens the saved session for the same query, as soon as the history
    /// has been read. Ignores a blank one.
    void search(const QString& query);

    /// Writes the current page again.
    void reloadCurrentPage();

    /// Writes the current root entry again, as a full article.
    void upgradeToFullEntry();

    /// Opens the root entry's section of that name; writes it when it is not written yet.
    void navigateTo(const QString& section);

    /// Goes back to a page of the trail.
    void jumpTo(const Page& breadcrumb);

    /// Goes from a section to the root entry, and from the root entry out of the session.
    void goBack();

    /// Closes the session.
    void newSearch();

    /// Empties both histories; the open session stays open.
    void clearHistory();

    /// Reads again what other programs have saved and cleared in the same files.
    void refreshHistory();

    /// Saves the open session and waits for all pending writes: for the end of the process. Of a
    /// page that is being written, what was there before it stays. A session that was open when the
    /// history was cleared is not saved.
    void prepareToQuit();

Q_SIGNALS:
    void changed(varno::AppViewModel::Changes what);

private:
    // Private operations leave announcing to the public operation that they belong to.
    template <typename Value, typename NewValue>
    void set(Value& member, NewValue&& value, Change change);
    void publish();

    void openSearched();
    void reopen(const Session& saved);
    void startEntry(const QString& query);
    void streamPage(const QUuid& id, EntryType entryType, const QString& prompt,
                    const QString& title);
    void requestTOC(const QUuid& id, const QString& title);
    void appendPiece(const QUuid& id, const QString& piece);
    void finishPage(const QUuid& id, const EntryStream::Outcome& outcome);
    void finishTOC(const QUuid& id, const TOCRequest::Outcome& outcome);
    void cancelActiveStreams();
    void reload(EntryType entryType);

    void openSection(const Page& root, const QString& section);
    void showCurrentPage();
    void closeSession();
    [[nodiscard]] QStringList tocForCurrentPage() const;

    void loadSessionHistory();
    void saveCurrentSessionToHistory();
    void recordSearch(const QString& query);
    void takeStoredSearches();
    void discardUnfinishedWriting();
    [[nodiscard]] const Session* savedSession(const QString& query) const;

    [[nodiscard]] const ModelService& service() const;
    [[nodiscard]] Page* sessionPage(const QUuid& id);

    Dependencies m_dependencies;
    Changes m_pendingChanges;

    bool m_isShowingEntry = false;
    bool m_isShowingSettings = false;
    bool m_isShowingFind = false;
    bool m_isStreaming = false;
    QString m_streamingTitle;
    QString m_streamingContent;
    QStringList m_streamingTOC;
    bool m_tocIsLoading = false;
    std::optional<QString> m_errorMessage;
    std::optional<Session> m_session;
    Preferences m_preferences;
    QString m_searchInWaiting; ///< for the history to be read
    std::stop_source m_preparation;
    QDeadlineTimer m_preparationEnd; ///< over while there is none

    Page m_pageBeforeWriting;  ///< the page that is written, as it was
    QUuid m_sessionAtClearing; ///< open then, and not saved since
    std::unique_ptr<EntryStream> m_activeStreamTask;
    std::unique_ptr<TOCRequest> m_activeTOCTask;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(AppViewModel::Changes)

/// Records one change for the next announcement.
template <typename Value, typename NewValue>
void AppViewModel::set(Value& member, NewValue&& value, Change change)
{
    member = std::forward<NewValue>(value);
    m_pendingChanges |= change;
}

} // namespace varno

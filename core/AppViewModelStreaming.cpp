#include "core/AppViewModel.h"
#include "core/EntryText.h"
#include "core/JsonArray.h"
#include "core/Prompts.h"

#include <algorithm>

namespace varno {

void AppViewModel::reloadCurrentPage()
{
    if (const Page* page = currentPage())
        reload(page->entryType);
    publish();
}

void AppViewModel::upgradeToFullEntry()
{
    const Page* page = currentPage();
    if (page && !page->parentPageId)
        reload(EntryType::full);
    publish();
}

/// Writes the current page again, as an entry of that kind.
void AppViewModel::reload(EntryType entryType)
{
    cancelActiveStreams();
    set(m_errorMessage, std::nullopt, Change::errorMessage);

    Page page = m_pageBeforeWriting = *currentPage();
    page.entryType = entryType;
    page.content.clear();
    QString prompt;
    if (page.parentPageId) {
        const Page* root = m_session->rootPage();
        prompt = sectionPrompt(page.parentSectionName.value_or(page.title),
                               root ? root->title : m_session->rootQuery);
    } else {
        prompt = entryPrompt(page.entryType, m_session->rootQuery);
        page.tableOfContents.clear();
        set(m_streamingTOC, QStringList(), Change::streamingTOC);
    }
    m_session->pages.insert(page.id, page);
    m_pendingChanges |= Change::session;
    streamPage(page.id, page.entryType, prompt, page.title);
}

void AppViewModel::streamPage(const QUuid& id, EntryType entryType, const QString& prompt,
                              const QString& title)
{
    set(m_isStreaming, true, Change::isStreaming);
    set(m_streamingContent, QString(), Change::streamingContent);
    set(m_streamingTitle, title, Change::streamingTitle);

    const Page* page = sessionPage(id);
    const bool isSection = page && page->parentPageId;
    if (!isSection && entryType == EntryType::full)
        requestTOC(id, title);

    m_activeStreamTask = service().streamEntry({.prompt = prompt,
                                                .systemPrompt = entrySystemPrompt(),
                                                .model = rawValue(aiModel()),
                                                .webSearch = webSearchEnabled()});
    connect(m_activeStreamTask.get(), &EntryStream::piece, this,
            [this, id](const QString& piece) { appendPiece(id, piece); });
    connect(m_activeStreamTask.get(), &EntryStream::finished, this,
            [this, id](const EntryStream::Outcome& outcome) { finishPage(id, outcome); });
}

void AppViewModel::requestTOC(const QUuid& id, const QString& title)
{
    set(m_streamingTOC, QStringList(), Change::streamingTOC);
    set(m_tocIsLoading, true, Change::tocIsLoading);

    m_activeTOCTask = service().generateTOC(title, rawValue(aiModel()), webSearchEnabled());
    connect(m_activeTOCTask.get(), &TOCRequest::finished, this,
            [this, id](const TOCRequest::Outcome& outcome) { finishTOC(id, outcome); });
}

void AppViewModel::appendPiece(const QUuid& id, const QString& piece)
{
    const QString fitting =
        piece.first(std::min(piece.size(), longestEntryText - m_streamingContent.size()));
    if (fitting.isEmpty())
        return;
    m_streamingContent += fitting;
    if (Page* page = sessionPage(id))
        page->content += fitting;
    m_pendingChanges |= Change::streamingPiece;
    publish();
}

void AppViewModel::finishPage(const QUuid& id, const EntryStream::Outcome& outcome)
{
    m_activeStreamTask.release()->deleteLater(); // it is calling us
    if (const auto* failure = std::get_if<Failure>(&outcome))
        set(m_errorMessage, failure->description, Change::errorMessage);

    // 1. The related topics are parsed.
    const std::optional<QString> topics = relatedTopicsText(m_streamingContent);
    const auto seeAlso = topics ? arrayIn(*topics) : std::nullopt;
    // 2. The text is cleaned, and both are stored in the page.
    set(m_streamingContent, cleanEntryText(m_streamingContent), Change::streamingContent);
    if (Page* page = sessionPage(id)) {
        page->seeAlso = seeAlso.value_or(QStringList());
        set(page->content, m_streamingContent, Change::session);
    }
    // 3. The stream has ended.
    set(m_isStreaming, false, Change::isStreaming);
    publish();
}

void AppViewModel::finishTOC(const QUuid& id, const TOCRequest::Outcome& outcome)
{
    m_activeTOCTask.release()->deleteLater(); // it is calling us
    if (const auto* sections = std::get_if<QStringList>(&outcome)) {
        set(m_streamingTOC, *sections, Change::streamingTOC);
        if (Page* page = sessionPage(id))
            set(page->tableOfContents, *sections, Change::session);
    }
    set(m_tocIsLoading, false, Change::tocIsLoading);
    publish();
}

void AppViewModel::cancelActiveStreams()
{
    m_searchInWaiting.clear();
    if (m_activeTOCTask)
        set(m_tocIsLoading, false, Change::tocIsLoading);
    m_activeStreamTask.reset();
    m_activeTOCTask.reset();
    set(m_isStreaming, false, Change::isStreaming);
}

} // namespace varno

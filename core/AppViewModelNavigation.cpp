#include "core/AppViewModel.h"
#include "core/Prompts.h"

namespace varno {

void AppViewModel::navigateTo(const QString& section)
{
    const Page* root = m_session ? m_session->rootPage() : nullptr;
    if (!root)
        return;
    cancelActiveStreams();
    if (const Page* written = m_session->cachedSectionPage(root->id, section)) {
        set(m_streamingTitle, written->title, Change::streamingTitle);
        set(m_streamingContent, written->content, Change::streamingContent);
        m_session->revisit(written->id);
        m_pendingChanges |= Change::session;
    } else {
        openSection(*root, section);
    }
    publish();
}

void AppViewModel::openSection(const Page& root, const QString& section)
{
    Page page;
    page.id = QUuid::createUuid();
    page.title = section;
    page.parentPageId = root.id;
    page.parentSectionName = section;
    page.entryType = EntryType::full;

    const QString prompt = sectionPrompt(section, root.title);
    m_session->push(page);
    m_pendingChanges |= Change::session;
    m_pageBeforeWriting = page;
    streamPage(page.id, page.entryType, prompt, section);
}

void AppViewModel::jumpTo(const Page& breadcrumb)
{
    const QUuid id = breadcrumb.id; // the page may be the session's own
    cancelActiveStreams();
    if (m_session) {
        m_session->cutHistoryAfter(id);
        m_pendingChanges |= Change::session;
    }
    showCurrentPage();
    publish();
}

void AppViewModel::goBack()
{
    // 1. What streams is cancelled.
    cancelActiveStreams();
    // 2. Without a page there is nowhere to go back from.
    const Page* page = currentPage();
    if (page && !page->parentPageId) {
        // 3. From the root entry the session is saved and closed.
        saveCurrentSessionToHistory();
        closeSession();
    } else if (page) {
        // 4. From a section the root entry is shown again.
        if (const Page* root = m_session->rootPage()) {
            m_session->cutHistoryAfter(root->id);
            m_pendingChanges |= Change::session;
        }
        showCurrentPage();
    }
    publish();
}

void AppViewModel::newSearch()
{
    saveCurrentSessionToHistory();
    cancelActiveStreams();
    closeSession();
    publish();
}

void AppViewModel::showCurrentPage()
{
    const Page* page = currentPage();
    set(m_streamingTOC, tocForCurrentPage(), Change::streamingTOC);
    set(m_streamingTitle, page ? page->title : QString(), Change::streamingTitle);
    set(m_streamingContent, page ? page->content : QString(), Change::streamingContent);
}

void AppViewModel::closeSession()
{
    set(m_isShowingEntry, false, Change::isShowingEntry);
    set(m_isShowingFind, false, Change::isShowingFind);
    set(m_session, std::nullopt, Change::session);
    set(m_streamingContent, QString(), Change::streamingContent);
    set(m_streamingTitle, QString(), Change::streamingTitle);
    set(m_streamingTOC, QStringList(), Change::streamingTOC);
    set(m_errorMessage, std::nullopt, Change::errorMessage);
}

QStringList AppViewModel::tocForCurrentPage() const
{
    const Page* page = currentPage();
    if (page && page->parentPageId)
        page = m_session->rootPage();
    return page ? page->tableOfContents : QStringList();
}

} // namespace varno

#include "reader/EntryState.h"

#include "reader/text/MarkdownContentView.h"

namespace varno {
namespace {

bool offersFullEntry(const AppViewModel& viewModel)
{
    const Page* page = viewModel.currentPage();
    return page && !viewModel.isStreaming() && page->entryType != EntryType::full;
}

/// Whether the page has been written and shows no text.
bool isWithoutText(const AppViewModel& viewModel)
{
    return viewModel.currentPage() && !viewModel.isStreaming() &&
           MarkdownContentView::showsNothing(displayContent(viewModel));
}

} // namespace

const Page* shownPage(const AppViewModel& viewModel)
{
    const Page* current = viewModel.currentPage();
    if (!current || viewModel.isStreaming())
        return current;
    const bool isOnShow = current->title == viewModel.streamingTitle() &&
                          current->content == viewModel.streamingContent();
    return isOnShow ? current : viewModel.session()->rootPage();
}

QList<Breadcrumb> breadcrumbs(const AppViewModel& viewModel)
{
    QList<Breadcrumb> crumbs;
    const Page* page = shownPage(viewModel);
    const Page* root = page ? viewModel.session()->rootPage() : nullptr;
    if (root && root != page)
        crumbs.append({.pageId = root->id, .title = root->title});
    if (page)
        crumbs.append({.pageId = page->id, .title = page->title});
    return crumbs;
}

ReadingColumn::PageState pageState(const AppViewModel& viewModel)
{
    return {.errorMessage = viewModel.errorMessage(),
            .isStreaming = viewModel.isStreaming(),
            .isWithoutText = isWithoutText(viewModel),
            .offersFullEntry = offersFullEntry(viewModel),
            .relatedTopics = relatedTopics(viewModel)};
}

QStringView displayContent(const AppViewModel& viewModel)
{
    const bool isOnShow = viewModel.isStreaming() || viewModel.currentPage();
    return isOnShow ? QStringView(viewModel.streamingContent()) : QStringView();
}

bool showSidebar(const AppViewModel& viewModel)
{
    const Page* page = viewModel.currentPage();
    if (!page)
        return false;
    const bool isToCome =
        viewModel.isStreaming() && page->entryType == EntryType::full && !page->parentPageId;
    return viewModel.tocIsLoading() || !viewModel.streamingTOC().isEmpty() || isToCome;
}

bool isOnSection(const AppViewModel& viewModel)
{
    const Page* page = shownPage(viewModel);
    return page && page->parentPageId;
}

QStringList relatedTopics(const AppViewModel& viewModel)
{
    const Page* page = viewModel.isStreaming() ? nullptr : shownPage(viewModel);
    return page ? page->seeAlso : QStringList();
}

} // namespace varno

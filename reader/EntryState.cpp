#include "reader/EntryState.h"

#include "reader/text/MarkdownContentView.h"

namespace varno {

const Page* shownPage(const AppViewModel& viewModel)
{
    const Page* current = viewModel.currentPage();
    if (!current || viewModel.isStreaming())
        return current;
    const bool isOnShow = current->title == viewModel.streamingTitle() &&
                          current->content == viewModel.streamingContent();
    return isOnShow ? current : viewModel.session()->rootPage();
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

bool offersFullEntry(const AppViewModel& viewModel)
{
    const Page* page = viewModel.currentPage();
    return page && !viewModel.isStreaming() && page->entryType != EntryType::full;
}

bool isWithoutText(const AppViewModel& viewModel)
{
    return viewModel.currentPage() && !viewModel.isStreaming() &&
           MarkdownContentView::showsNothing(displayContent(viewModel));
}

QStringList relatedTopics(const AppViewModel& viewModel)
{
    const Page* page = viewModel.isStreaming() ? nullptr : shownPage(viewModel);
    return page ? page->seeAlso : QStringList();
}

} // namespace varno

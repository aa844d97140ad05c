#pragma once

#include "core/AppViewModel.h"
#include "reader/BreadcrumbTrail.h"
#include "reader/ReadingColumn.h"

namespace varno {

/// What the entry screen derives from the controller's state. All results are valid until its next
/// operation.

/// The page whose title and text are on show: the current page, but in a session just reopened the
/// root page, wherever its trail ends. Null when there is none.
[[nodiscard]] const Page* shownPage(const AppViewModel& viewModel);

/// The trail from the root page to the page on show.
[[nodiscard]] QList<Breadcrumb> breadcrumbs(const AppViewModel& viewModel);

[[nodiscard]] ReadingColumn::PageState pageState(const AppViewModel& viewModel);

/// The text on show.
[[nodiscard]] QStringView displayContent(const AppViewModel& viewModel);

/// Whether there is a table of contents beside the page, or one to come.
[[nodiscard]] bool showSidebar(const AppViewModel& viewModel);

/// Whether the page on show is a section of another.
[[nodiscard]] bool isOnSection(const AppViewModel& viewModel);

/// The related topics; none while the page is streaming.
[[nodiscard]] QStringList relatedTopics(const AppViewModel& viewModel);

} // namespace varno

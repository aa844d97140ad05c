#pragma once

#include "core/AppViewModel.h"

namespace varno {

/// What the entry screen shows of the controller's state. All results are good until its next
/// operation.

/// The page whose title and text are on show: the current page, but in a session just reopened the
/// root page, wherever its trail ends. Null when there is none.
[[nodiscard]] const Page* shownPage(const AppViewModel& viewModel);

/// The text on show.
[[nodiscard]] QStringView displayContent(const AppViewModel& viewModel);

/// Whether there is a table of contents beside the page, or one to come.
[[nodiscard]] bool showSidebar(const AppViewModel& viewModel);

/// Whether the page on show is a section of another.
[[nodiscard]] bool isOnSection(const AppViewModel& viewModel);

/// Whether an article could be made of the page.
[[nodiscard]] bool offersFullEntry(const AppViewModel& viewModel);

/// Whether the page was written, and there is nothing to read on it.
[[nodiscard]] bool isWithoutText(const AppViewModel& viewModel);

/// Topics to go on to; none while the page is being written.
[[nodiscard]] QStringList relatedTopics(const AppViewModel& viewModel);

} // namespace varno

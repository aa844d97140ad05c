#pragma once

#include "bench/ProcessorTime.h"

#include <QScrollArea>
#include <QTextDocument>

namespace varno::bench {

/// A window with a page that scrolls in it, as wide as the column that pages are read in.
class PageWindow {
public:
    /// The page is as high as its text, and outlives the window.
    explicit PageWindow(QWidget& page);
    ~PageWindow();
    Q_DISABLE_COPY_MOVE(PageWindow)

    void scrollToEnd();
    /// Does the layouts that are due, and paints what is on screen.
    void paint();

    [[nodiscard]] QWidget& widget() { return m_area; }

private:
    QWidget& m_page;
    QScrollArea m_area;
};

/// Turns of the event loop until the document does not grow any more, each a block of work.
void finish(const QTextDocument& document, Blocks& blocks);

} // namespace varno::bench

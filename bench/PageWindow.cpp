#include "bench/PageWindow.h"

#include "kit/Theme.h"

#include <QCoreApplication>
#include <QScrollBar>
#include <QWindow>

namespace varno::bench {
namespace {

constexpr QSize windowSize(620, 700);
constexpr int quietTurns = 4;

} // namespace

PageWindow::PageWindow(QWidget& page)
    : m_page(page)
{
    setTheme(m_area, AppTheme::cream);
    m_area.setFrameShape(QFrame::NoFrame);
    m_area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area.resize(windowSize);
    page.resize(m_area.contentsRect().width() - m_area.verticalScrollBar()->sizeHint().width(), 0);
    m_area.setWidget(&page);
    m_area.show();
    while (!m_area.windowHandle()->isExposed()) // nothing is painted before
        QCoreApplication::processEvents();
    paint();
}

PageWindow::~PageWindow()
{
    m_area.takeWidget()->setParent(nullptr);
}

void PageWindow::scrollToEnd()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    m_area.verticalScrollBar()->setValue(m_area.verticalScrollBar()->maximum());
}

void PageWindow::paint()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    m_area.repaint();
}

void finish(const QTextDocument& document, Blocks& blocks)
{
    int length = document.characterCount();
    for (int quiet = 0; quiet < quietTurns; ++quiet) {
        blocks.run([] { QCoreApplication::processEvents(); });
        if (document.characterCount() != length)
            quiet = 0;
        length = document.characterCount();
    }
}

} // namespace varno::bench

#include "app/VarnoPanel.h"

#include "kit/Layout.h"
#include "platform/WindowPlacement.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize firstSize(860, 620);
constexpr QSize leastSize(640, 440);
constexpr int edge = 4; // where the mouse takes hold to resize

} // namespace

VarnoPanel::VarnoPanel(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_viewModel(viewModel)
    , m_content(viewModel, keys, shortcut)
{
    setWindowTitle(u"Varno"_s);
    setMinimumSize(leastSize);
    resize(firstSize);
    setMouseTracking(true);
    setTheme(*this, viewModel.theme());
    setLayout(column({.horizontal = edge, .vertical = edge}, {grow(m_content)}));
    setFocusProxy(&m_content);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QPoint middle = screen->availableGeometry().center();
        move(middle.x() + 1 - firstSize.width() / 2, middle.y() + 1 - firstSize.height() / 2);
    }
    connect(&viewModel, &AppViewModel::changed, this, &VarnoPanel::takeNote);
    connect(&m_content, &ContentView::hideRequested, this, &QWidget::hide);
}

void VarnoPanel::takeNote(AppViewModel::Changes what)
{
    if (what.testFlag(AppViewModel::Change::theme))
        setTheme(*this, m_viewModel.theme());
}

void VarnoPanel::present(quint32 time)
{
    if (!isVisible()) {
        keepOnScreen();
        winId(); // creates the window
        prepareFloatingPanel(*windowHandle());
        show();
    }
    raise();
    activateForUser(*windowHandle(), time);
}

/// Onto the screen where its middle is, or else the first one, when that is smaller or another one
/// than before.
void VarnoPanel::keepOnScreen()
{
    const QScreen* screen = QGuiApplication::screenAt(geometry().center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect room = screen->availableGeometry();
    QRect place = geometry();
    place.setSize(place.size().boundedTo(room.size()).expandedTo(minimumSize()));
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() + 1 - place.width())));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() + 1 - place.height())));
    setGeometry(place);
}

Qt::Edges VarnoPanel::edgesAt(const QPoint& position) const
{
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, position.x() < edge);
    edges.setFlag(Qt::RightEdge, position.x() >= width() - edge);
    edges.setFlag(Qt::TopEdge, position.y() < edge);
    edges.setFlag(Qt::BottomEdge, position.y() >= height() - edge);
    return edges;
}

void VarnoPanel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Qt::Edges edges = edgesAt(event->position().toPoint());
    if (edges)
        windowHandle()->startSystemResize(edges);
    else
        windowHandle()->startSystemMove();
}

void VarnoPanel::mouseMoveEvent(QMouseEvent* event)
{
    const Qt::Edges edges = edgesAt(event->position().toPoint());
    const bool falling =
        edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge);
    const bool rising =
        edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge);
    if (falling || rising)
        setCursor(falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor);
    else if (edges)
        setCursor(edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor);
    else
        unsetCursor();
}

void VarnoPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(themeColor(palette(), ColorRole::border));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace varno

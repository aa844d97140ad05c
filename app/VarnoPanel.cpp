#include "app/VarnoPanel.h"

#include "app/CloseButton.h"
#include "app/WindowFrame.h"
#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/Theme.h"
#include "platform/WindowPlacement.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize leastSize(640, 440);

} // namespace

VarnoPanel::VarnoPanel(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_viewModel(viewModel)
    , m_content(viewModel, keys, shortcut)
{
    setWindowTitle(u"Varno"_s);
    setAccessibleRole(*this, QAccessible::Window);
    setMinimumSize(leastSize);
    resize(firstSize);
    setTheme(*this, viewModel.theme());
    setLayout(column({}, {grow(m_content)}));
    setFocusProxy(&m_content);
    if (!hasSystemFrame())
        addFrame();
    if (const QRect room = roomBeforeUser(); !room.isEmpty())
        move(room.center() + QPoint(1, 1) - QPoint(firstSize.width(), firstSize.height()) / 2);
    connect(&viewModel, &AppViewModel::changed, this, &VarnoPanel::takeNote);
    connect(&m_content, &ContentView::hideRequested, this, &QWidget::hide);
}

void VarnoPanel::addFrame()
{
    new WindowFrame(*this);
    auto* close = new CloseButton(*this); // over its corner
    connect(close, &CloseButton::clicked, this, &QWidget::hide);
}

void VarnoPanel::takeNote(AppViewModel::Changes what)
{
    if (what.testFlag(AppViewModel::Change::theme))
        setTheme(*this, m_viewModel.theme());
}

void VarnoPanel::present(const UserAction& action)
{
    if (isVisible()) {
        raise();
    } else {
        keepOnScreen();
        winId(); // creates the window
        windowHandle()->installEventFilter(&m_heldKeys);
        prepareFloatingPanel(*windowHandle());
        show();
    }
    activateForUser(*windowHandle(), action);
    if (!windowHandle()->isExposed())
        repaint(); // while the window manager makes room for it
}

/// Where not all of it is on screens any more: onto the one where its middle is, or else the user.
void VarnoPanel::keepOnScreen()
{
    QRegion rooms;
    for (const QScreen* screen : QGuiApplication::screens())
        rooms += screen->availableGeometry();
    if (QRegion(geometry()).subtracted(rooms).isEmpty())
        return;
    const QScreen* screen = QGuiApplication::screenAt(geometry().center());
    const QRect room = screen ? screen->availableGeometry() : roomBeforeUser();
    if (room.isEmpty())
        return;
    QRect place = geometry();
    place.setSize(place.size().boundedTo(room.size()).expandedTo(minimumSize()));
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() + 1 - place.width())));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() + 1 - place.height())));
    setGeometry(place);
}

void VarnoPanel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_pressedAt = event->globalPosition().toPoint();
}

void VarnoPanel::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_pressedAt.reset();
}

void VarnoPanel::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_pressedAt || !event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint way = event->globalPosition().toPoint() - *m_pressedAt;
    if (way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_pressedAt.reset();
    if (isPointerPressed())
        startMove(*windowHandle());
}

} // namespace varno

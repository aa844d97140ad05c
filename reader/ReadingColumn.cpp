#include "reader/ReadingColumn.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/ScriptDirection.h"
#include "kit/TextCuts.h"
#include "kit/TextField.h"
#include "reader/PageMenu.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace varno {
namespace {

constexpr int belowHeader = 20;
constexpr int aboveError = 40 - belowHeader; // 40 below the header
constexpr int aboveStreamingRow = 4;
constexpr int aboveFullEntry = 24;
constexpr int aboveRelatedTopics = 32;

constexpr int lineStep = 24;
constexpr std::chrono::milliseconds scrollDuration(250);

QString writing()
{
    return ReadingColumn::tr("Writing");
}

/// Space and all goes where the place is hidden.
void fill(QWidget& place, int above, const LayoutItem& item)
{
    place.setLayout(column({}, {gap(above), item}));
}

} // namespace

ReadingColumn::ReadingColumn(QWidget* parent)
    : VerticalScrollArea(parent)
    , m_state(&m_page)
    , m_status(tr("Getting the most accurate information…"))
    , m_scroll(*this, [this](double y) { verticalScrollBar()->setValue(qRound(y)); })
    , m_selection(m_header, m_text)
    , m_selectionScroller(*this, m_text)
{
    fill(m_errorPlace, aboveError, row({}, {grow(m_error)}));
    fill(m_streamingRow, aboveStreamingRow, row({.spacing = 8}, {m_cursor, m_status, stretch()}));
    fill(m_fullEntryPlace, aboveFullEntry, aligned(m_fullEntry, Qt::AlignLeading));
    fill(m_relatedTopicsPlace, aboveRelatedTopics, m_relatedTopics);
    m_page.setLayout(column({.horizontal = 36, .vertical = 28},
                            {m_header, gap(belowHeader), m_errorPlace, m_text, m_streamingRow,
                             m_fullEntryPlace, m_relatedTopicsPlace, stretch()}));

    setAccessibleRole(m_page, QAccessible::Document);
    setAccessibleRole(m_state, QAccessible::Notification);
    m_state.setFixedSize(0, 0);

    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // its coming would break the lines anew
    verticalScrollBar()->setSingleStep(lineStep);
    setFocusPolicy(Qt::ClickFocus);
    setContent(m_page);
    setPageState({});

    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, [this] { m_scroll.stop(); });
    connect(&m_text, &MarkdownContentView::selectionDragged, &m_selectionScroller,
            &SelectionScroller::drag);
    connect(&m_text, &MarkdownContentView::linkFocused, this, [this](const QRect& link) {
        showPart(m_text, link); // the text as a whole is where it is read
    });
    connect(&m_error, &ErrorPanel::tryAgain, this, &ReadingColumn::tryAgain);
    connect(&m_error, &ErrorPanel::newSearch, this, &ReadingColumn::newSearch);
    connect(&m_fullEntry, &FullEntryButton::clicked, this, &ReadingColumn::fullEntry);
    connect(&m_relatedTopics, &RelatedTopics::topicPressed, this, &ReadingColumn::searchRequested);
}

void ReadingColumn::setTitle(const QString& title)
{
    m_header.setTitle(title);
    m_titleShown = shortened(title, toolTipLimit);
    m_page.setAccessibleName(m_titleShown);
    turn();
}

void ReadingColumn::openPage(QStringView text, const Place& place)
{
    m_scroll.stop();
    if (m_state.accessibleName() != writing())
        m_state.setAccessibleName({}); // of the page before
    turnFor(text);
    m_text.setText(text);
    showStatus();
    restore(place);
}

void ReadingColumn::reviseText(QStringView text)
{
    keepPlace([&] {
        turnFor(text);
        m_text.reviseText(text);
    });
    showStatus();
}

void ReadingColumn::appendText(QStringView piece)
{
    if (m_textStart.size() < directedStart) {
        m_textStart += piece.first(std::min(piece.size(), directedStart - m_textStart.size()));
        turn();
    }
    m_text.appendText(piece);
    showStatus();
}

void ReadingColumn::turnFor(QStringView text)
{
    m_textStart = text.first(std::min(text.size(), directedStart)).toString();
    turn();
}

/// The page begins on the side where most of what is written begins.
void ReadingColumn::turn()
{
    setWrittenDirection(m_page, m_titleShown + u' ' + m_textStart);
}

void ReadingColumn::setFontSize(int points)
{
    keepPlace([&] { m_text.setFontSize(points); });
}

void ReadingColumn::setPageState(const PageState& state)
{
    const bool isWhole = !state.errorMessage;
    const bool hasFocus = isAncestorOf(QApplication::focusWidget());
    setFocusProxy(isWhole ? &m_text : nullptr);
    if (state.errorMessage)
        m_error.showFailure(*state.errorMessage);
    else
        m_error.showNotice(tr("This entry came back without any text."));
    m_relatedTopics.setTopics(state.relatedTopics);

    m_isWritten = !state.isStreaming;
    m_errorPlace.setVisible(!isWhole || state.isWithoutText);
    m_text.setVisible(isWhole);
    m_streamingRow.setVisible(isWhole && state.isStreaming);
    m_fullEntryPlace.setVisible(isWhole && state.offersFullEntry);
    m_relatedTopicsPlace.setVisible(isWhole && !state.relatedTopics.isEmpty());
    tellState(state);
    if (hasFocus)
        setFocus();
}

/// Only what changes: a page that was written before has no state.
void ReadingColumn::tellState(const PageState& state)
{
    const bool wasWriting = m_state.accessibleName() == writing();
    if (state.isStreaming == wasWriting && !state.errorMessage)
        return;
    const QString told = state.errorMessage  ? shortened(*state.errorMessage, toolTipLimit)
                         : state.isStreaming ? writing()
                                             : tr("Done");
    if (told == m_state.accessibleName())
        return;
    m_state.setAccessibleName(told);
    announce(m_state);
}

void ReadingColumn::showStatus()
{
    m_status.setVisible(m_text.textLength() == 0);
}

void ReadingColumn::scrollToBlock(int index)
{
    const QRect block = m_text.blockRect(index);
    if (block.isNull() || m_text.isHidden())
        return;
    writeViewportBelow(index);
    settle();
    const QScrollBar& bar = *verticalScrollBar();
    const int wanted = m_text.y() + block.center().y() - viewport()->height() / 2;
    m_scroll.start({.from = double(bar.value()),
                    .to = double(std::clamp(wanted, bar.minimum(), bar.maximum())),
                    .duration = scrollDuration});
}

/// `y` is a line of the viewport.
ReadingColumn::Place ReadingColumn::placeAt(int y)
{
    const int line = verticalScrollBar()->value() + y - m_text.y();
    const int block = line > 0 && !m_text.isHidden() ? m_text.blockAt(line) : -1;
    if (block < 0)
        return {.distance = verticalScrollBar()->value() + y};
    const QRect rect = m_text.blockRect(block);
    const double within = std::clamp(double(line - rect.top()) / rect.height(), 0.0, 1.0);
    return {.block = block,
            .within = within,
            .distance = line - rect.top() - qRound(within * rect.height())};
}

void ReadingColumn::restore(const Place& place, int y)
{
    const QRect rect = m_text.blockRect(place.block);
    if (!rect.isNull())
        writeViewportBelow(place.block);
    settle();
    const int line =
        rect.isNull() ? 0 : m_text.y() + rect.top() + qRound(place.within * rect.height());
    verticalScrollBar()->setValue(line + place.distance - y);
}

template <typename Action>
void ReadingColumn::keepPlace(Action action)
{
    const Place before = place();
    action();
    restore(before);
}

/// Without it the page might still be too short to be scrolled that far.
void ReadingColumn::writeViewportBelow(int block)
{
    const int end = m_text.blockRect(block).bottom() + viewport()->height();
    QRect written = m_text.blockRect(++block);
    while (!written.isNull() && written.bottom() < end)
        written = m_text.blockRect(++block);
}

/// Does at once what the layouts would do a little later.
void ReadingColumn::settle()
{
    m_page.layout()->activate();
    QEvent layoutRequest(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(this, &layoutRequest);
}

void ReadingColumn::changeEvent(QEvent* event)
{
    VerticalScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        keepPlace([&] { m_text.setTextColor(themeColor(palette(), ColorRole::text)); });
}

void ReadingColumn::keyPressEvent(QKeyEvent* event)
{
    const auto control = asControlKey(*event);
    const QKeyEvent& key = control ? *control : *event;
    event->accept();
    if (key.matches(QKeySequence::Copy))
        m_selection.copy();
    else if (key.matches(QKeySequence::SelectAll))
        m_selection.selectAll();
    else
        VerticalScrollArea::keyPressEvent(event);
}

void ReadingColumn::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const bool hasText = !m_text.isHidden() && m_text.textLength() > 0;
    auto* menu =
        new PageMenu({.selectedText = m_selection.text(),
                      .link = isByKey ? m_text.focusedLink()
                                      : m_text.linkAt(m_text.mapFromGlobal(event->globalPos())),
                      .hasText = hasText,
                      .isWritten = m_isWritten},
                     *this);
    connect(menu, &PageMenu::copy, this, [this] { m_selection.copy(); });
    connect(menu, &PageMenu::selectAll, this, [this] { m_selection.selectAll(); });
    connect(menu, &PageMenu::search, this, &ReadingColumn::searchRequested);
    connect(menu, &PageMenu::copyEntry, this, &ReadingColumn::copyEntry);
    const QRect room(mapToGlobal(QPoint()), size());
    if (menu->isEmpty())
        delete menu;
    else
        menu->popup(room.contains(event->globalPos()) ? event->globalPos() : room.topLeft());
}

/// Whether it is at the height of the page's content, and not on any of it.
bool ReadingColumn::isBesidePage(const QMouseEvent& event) const
{
    const QRect content = m_page.childrenRect();
    const int y = m_page.mapFromGlobal(event.globalPosition()).toPoint().y();
    return y >= content.top() && y <= content.bottom();
}

void ReadingColumn::mousePressEvent(QMouseEvent* event)
{
    m_isPressedBeside = isBesidePage(*event) && m_selection.mouseBeside(*event);
    event->setAccepted(m_isPressedBeside);
}

void ReadingColumn::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void ReadingColumn::mouseMoveEvent(QMouseEvent* event)
{
    event->setAccepted(m_isPressedBeside && m_selection.mouseBeside(*event));
}

void ReadingColumn::mouseReleaseEvent(QMouseEvent* event)
{
    event->setAccepted(std::exchange(m_isPressedBeside, false) && m_selection.mouseBeside(*event));
}

/// With Control the text under the pointer stays where it is, and changes its size.
void ReadingColumn::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() != Qt::ControlModifier) {
        VerticalScrollArea::wheelEvent(event);
        return;
    }
    event->accept();
    m_wheelTurn += event->angleDelta().y();
    const int steps = m_wheelTurn / QWheelEvent::DefaultDeltasPerStep;
    m_wheelTurn %= QWheelEvent::DefaultDeltasPerStep;
    if (steps == 0)
        return;
    const int y = viewport()->mapFromGlobal(event->globalPosition()).toPoint().y();
    const Place read = placeAt(y);
    Q_EMIT textSizeStepped(steps);
    restore(read, y);
}

void ReadingColumn::resizeEvent(QResizeEvent* event)
{
    keepPlace([&] { VerticalScrollArea::resizeEvent(event); });
}

} // namespace varno

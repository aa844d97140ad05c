#include "reader/EntryView.h"

#include "kit/CommandKeys.h"
#include "kit/Layout.h"
#include "reader/CopiedEntry.h"
#include "reader/EntryState.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

constexpr double leastSidebarWidth = 140;
constexpr double mostSidebarWidth = 340;
constexpr qint64 frame = 16; // milliseconds

using Change = AppViewModel::Change;
constexpr AppViewModel::Changes pageChanges = Change::session | Change::isStreaming |
                                              Change::streamingTitle | Change::streamingContent |
                                              Change::errorMessage;
constexpr AppViewModel::Changes contentsChanges =
    pageChanges | Change::streamingTOC | Change::tocIsLoading;
constexpr AppViewModel::Changes everything = AppViewModel::Changes::fromInt(~0U);

} // namespace

EntryView::EntryView(AppViewModel& viewModel, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_pendingChanges(everything)
    , m_find(m_findBar, m_column)
{
    setLayout(
        column({}, {m_breadcrumbBar, m_findBar, row({}, {m_sidebar, m_divider, grow(m_column)})}));
    m_nextFlush.setSingleShot(true);
    m_nextFlush.setTimerType(Qt::PreciseTimer);

    connect(&viewModel, &AppViewModel::changed, this, &EntryView::takeNote);
    connect(&m_nextFlush, &QTimer::timeout, this, &EntryView::flush);
    connectBars();
    connectPage();
    bindKeys();
    flush();
}

void EntryView::connectBars()
{
    connect(&m_breadcrumbBar, &BreadcrumbBar::crumbPressed, this, &EntryView::jumpTo);
    connect(&m_breadcrumbBar, &BreadcrumbBar::newSearch, &m_viewModel, &AppViewModel::newSearch);
    connect(&m_breadcrumbBar, &BreadcrumbBar::find, this, &EntryView::openFind);
    connect(&m_breadcrumbBar, &BreadcrumbBar::reload, &m_viewModel,
            &AppViewModel::reloadCurrentPage);
    connect(&m_breadcrumbBar, &BreadcrumbBar::settings, this,
            [this] { m_viewModel.setShowingSettings(true); });

    connect(&m_findBar, &FindBar::closed, this, [this] { m_viewModel.setShowingFind(false); });
    connect(&m_findBar, &FindBar::findTextChanged, this,
            [this](const QString& text) { m_find.setFindText(text, textInColumn()); });
}

void EntryView::connectPage()
{
    connect(&m_sidebar, &TOCSidebarView::sectionPressed, &m_viewModel, &AppViewModel::navigateTo);
    connect(&m_divider, &ResizeDivider::dragged, this, &EntryView::dragSidebar);
    connect(&m_divider, &ResizeDivider::dragEnded, this,
            [this] { m_sidebarDragStartWidth.reset(); });

    connect(&m_column, &ReadingColumn::tryAgain, &m_viewModel, &AppViewModel::reloadCurrentPage);
    connect(&m_column, &ReadingColumn::newSearch, &m_viewModel, &AppViewModel::newSearch);
    connect(&m_column, &ReadingColumn::fullEntry, &m_viewModel, &AppViewModel::upgradeToFullEntry);
    connect(&m_column, &ReadingColumn::searchRequested, &m_viewModel, &AppViewModel::search);
    connect(&m_column, &ReadingColumn::textSizeStepped, this, &EntryView::stepTextSize);
    connect(&m_column, &ReadingColumn::copyEntry, this, &EntryView::copyEntry);
}

void EntryView::bindKeys()
{
    bind({u"Ctrl+F"_s, u"Meta+F"_s}, [this] { openFind(); });
    bind({u"Ctrl++"_s, u"Ctrl+="_s, u"Meta++"_s, u"Meta+="_s}, [this] { stepTextSize(1); });
    bind({u"Ctrl+-"_s, u"Meta+-"_s}, [this] { stepTextSize(-1); });
    // Each of these asks the service: a key that is held asks once.
    bind({u"F5"_s, u"Ctrl+R"_s, u"Meta+R"_s}, [this] {
        m_viewModel.reloadCurrentPage();
    }).setAutoRepeat(false);
    bind({u"Ctrl+Return"_s, u"Ctrl+Enter"_s, u"Meta+Return"_s, u"Meta+Enter"_s}, [this] {
        if (m_column.offersFullEntry())
            m_viewModel.upgradeToFullEntry();
    }).setAutoRepeat(false);
}

QShortcut& EntryView::bind(const QList<QKeySequence>& keys, const std::function<void()>& action)
{
    auto* shortcut = new QShortcut(this);
    shortcut->setKeys(commandKeys(keys));
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, action);
    return *shortcut;
}

void EntryView::takeNote(AppViewModel::Changes what)
{
    m_pendingChanges |= what;
    if (what.testFlag(Change::streamingContent) && displayContent(m_viewModel).isEmpty())
        m_isWrittenAnew = true; // there may be text again before it is shown
    if (what.testFlag(Change::isShowingFind) && !m_viewModel.isShowingFind())
        m_find.reset(); // not later: it may be open again by then
    if (!isVisible())
        return;
    if (what == Change::streamingPiece)
        scheduleFlush();
    else
        flush();
}

/// Of the text, what the column shows already.
QStringView EntryView::textInColumn() const
{
    const QStringView text = displayContent(m_viewModel);
    return text.first(std::min(text.size(), m_column.textLength()));
}

/// Pieces that arrive within one frame are shown together.
void EntryView::scheduleFlush()
{
    if (m_nextFlush.isActive())
        return;
    const qint64 elapsed = m_sinceFlush.isValid() ? m_sinceFlush.elapsed() : frame;
    m_nextFlush.start(int(std::max<qint64>(frame - elapsed, 0)));
}

void EntryView::flush()
{
    const AppViewModel::Changes what = std::exchange(m_pendingChanges, {});
    const Page* page = shownPage(m_viewModel);
    const bool isOtherPage = m_isWrittenAnew || m_shownPageId != (page ? page->id : QUuid());
    if (isOtherPage)
        leavePage();
    if (what & pageChanges)
        showPage();
    if (isOtherPage)
        openPage();
    else if (what.testFlag(Change::streamingContent))
        showText();
    else if (what.testFlag(Change::streamingPiece))
        showPieces();
    if (what & contentsChanges)
        showContents();
    if (what.testFlag(Change::fontSize))
        m_column.setFontSize(pointSize(m_viewModel.fontSize()));
    if (what.testFlag(Change::isShowingFind))
        showFind();
    m_nextFlush.stop();
    m_sinceFlush.start();
}

void EntryView::leavePage()
{
    const QUuid session = m_viewModel.session() ? m_viewModel.session()->id : QUuid();
    if (std::exchange(m_shownSessionId, session) == session)
        m_places.insert(m_shownPageId, m_column.place());
    else
        m_places.clear();
}

/// Whoever came by key reads on with keys: what had the focus would do its work again.
void EntryView::openPage()
{
    const Page* page = shownPage(m_viewModel);
    m_shownPageId = page ? page->id : QUuid();
    const ReadingColumn::Place place = m_places.take(m_shownPageId);
    const QStringView text = displayContent(m_viewModel);
    m_column.openPage(text, std::exchange(m_isWrittenAnew, false) ? ReadingColumn::Place() : place);
    m_find.pageReplaced(text);
    const QWidget* focus = QApplication::focusWidget();
    if (isAncestorOf(focus) && !m_findBar.isAncestorOf(focus))
        m_column.setFocus();
}

void EntryView::showPage()
{
    m_breadcrumbBar.setCrumbs(breadcrumbs(m_viewModel));
    m_column.setTitle(m_viewModel.streamingTitle());
    m_column.setPageState(pageState(m_viewModel));
}

void EntryView::showText()
{
    const QStringView text = displayContent(m_viewModel);
    m_column.reviseText(text);
    m_find.pageReplaced(text);
}

void EntryView::showPieces()
{
    const QStringView more = displayContent(m_viewModel).sliced(m_column.textLength());
    m_column.appendText(more);
    m_find.pageGrew(more);
}

void EntryView::showContents()
{
    const Page* page = shownPage(m_viewModel);
    m_sidebar.setSections(m_viewModel.streamingTOC());
    m_sidebar.setLoading(m_viewModel.tocIsLoading());
    m_sidebar.setActiveSection(isOnSection(m_viewModel) ? page->parentSectionName : std::nullopt);
    m_sidebar.setFixedWidth(qRound(m_sidebarWidth));
    m_sidebar.setVisible(showSidebar(m_viewModel));
    m_divider.setVisible(showSidebar(m_viewModel));
}

void EntryView::showFind()
{
    const bool hadFocus = m_findBar.isAncestorOf(focusWidget());
    m_findBar.setVisible(m_viewModel.isShowingFind());
    if (m_viewModel.isShowingFind())
        m_findBar.takeFocus();
    else if (hadFocus)
        m_column.setFocus();
}

void EntryView::openFind()
{
    m_viewModel.setShowingFind(true);
}

void EntryView::copyEntry()
{
    auto entry = copiedEntry(m_viewModel.streamingTitle(), displayContent(m_viewModel),
                             *m_column.allText(), relatedTopics(m_viewModel));
    QGuiApplication::clipboard()->setMimeData(entry.release());
}

void EntryView::stepTextSize(int steps)
{
    const auto size = static_cast<FontSize>(
        std::clamp(static_cast<int>(m_viewModel.fontSize()) + steps,
                   static_cast<int>(FontSize::small), static_cast<int>(FontSize::large)));
    if (size != m_viewModel.fontSize())
        m_viewModel.setFontSize(size);
}

void EntryView::jumpTo(const QUuid& pageId)
{
    const Page* page = m_viewModel.session() ? m_viewModel.session()->page(pageId) : nullptr;
    if (page)
        m_viewModel.jumpTo(*page);
}

void EntryView::dragSidebar(int translation)
{
    if (!m_sidebarDragStartWidth)
        m_sidebarDragStartWidth = m_sidebarWidth;
    m_sidebarWidth = std::max(std::min(*m_sidebarDragStartWidth + translation, mostSidebarWidth),
                              leastSidebarWidth);
    m_sidebar.setFixedWidth(qRound(m_sidebarWidth));
}

bool EntryView::closesFind(const QKeyEvent& event) const
{
    return m_viewModel.isShowingFind() && event.key() == Qt::Key_Escape &&
           event.modifiers() == Qt::NoModifier;
}

bool EntryView::event(QEvent* event)
{
    // While the find bar is open, Escape is no shortcut of the window.
    const auto* key = dynamic_cast<QKeyEvent*>(event);
    if (key && event->type() == QEvent::ShortcutOverride && closesFind(*key)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

/// A focus proxy would be a stop for Tab: from the last widget it would lead back to the text, past
/// the bars above it.
void EntryView::focusInEvent(QFocusEvent* event)
{
    m_column.setFocus(event->reason());
}

void EntryView::keyPressEvent(QKeyEvent* event)
{
    if (!closesFind(*event))
        m_column.keyPressEvent(event);
    else if (!event->isAutoRepeat()) // a key that is held goes one step
        m_viewModel.setShowingFind(false);
}

void EntryView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    flush();
}

void EntryView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_nextFlush.stop();
}

} // namespace varno

#include "app/SearchView.h"

#include "app/AfterShowing.h"
#include "app/CloseButton.h"
#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "platform/KeyLabel.h"

#include <QKeyEvent>

#include <array>
#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

const auto between = u"    "_s; // the hints of the bottom bar

} // namespace

SearchView::SearchView(AppViewModel& viewModel, KeychainTasks& keys,
                       std::function<QString()> shortcutLabel, QWidget* parent,
                       AnimationSetting& animationSetting)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_keys(keys)
    , m_shortcutLabel(std::move(shortcutLabel))
    , m_title(tr("VARNO"), {.size = 42, .weight = QFont::Light, .tracking = 8})
    , m_subtitle(tr("An AI Encyclopedia"), {.size = 13, .tracking = 2, .opacity = 0.55})
    , m_warningPlace(animationSetting)
    , m_warningSymbol(Symbol::exclamationmarkTriangle, {.size = 11, .role = StandardColor::orange})
    , m_warningText(tr("Add your Anthropic API key in Settings to get started."),
                    {.size = 12, .role = StandardColor::orange})
    , m_listPlace(animationSetting)
    , m_recentSearches(tr("RECENT"), tr("Recent searches"), SearchList::Clearing::offered)
    , m_keptEntries(tr("KEPT ENTRIES"), tr("Kept entries"), SearchList::Clearing::notOffered)
    , m_bottomBar({}, {.size = 11, .opacity = 0.35})
    , m_settings(Symbol::gearshape, {.symbol = {.size = 13, .opacity = 0.45}})
{
    m_scrollArea.setContent(*page());
    auto* corner = new QWidget; // where the panel has its close button
    corner->setFixedHeight(CloseButton::reach);
    m_scrollArea.addScrollBarWidget(corner, Qt::AlignTop);
    setLayout(column({}, {
                             grow(m_scrollArea),
                             row({.horizontal = 24}, {m_bottomBar, stretch(), m_settings}),
                             gap(16),
                         }));
    setFocusProxy(&m_box);
    m_settings.setToolTip(tr("Settings"));
    m_settings.setFocusPolicy(Qt::NoFocus);
    m_box.setTextSize(pointSize(viewModel.fontSize()));
    m_box.focusProxy()->installEventFilter(this);
    showList();
    connectParts();
}

QWidget* SearchView::page()
{
    // All of these stand 16 points below what is there above them; the box has its own room below.
    constexpr int above = 16 - SearchBox::shadowRoom;
    m_warning.setLayout(row({.spacing = 6}, {m_warningSymbol, m_warningText}));
    m_warning.layout()->setContentsMargins(0, above, 0, SearchBox::shadowRoom);
    m_warningPlace.addPart(m_warning);
    for (SearchList* list : std::array<SearchList*, 2>{&m_recentSearches, &m_keptEntries}) {
        list->layout()->setContentsMargins(0, above, 0, 0);
        m_listPlace.addPart(*list);
        connect(list, &SearchList::searchPressed, this, &SearchView::searchAgain);
    }
    auto* page = new QWidget;
    page->setLayout(column({}, {
                                   stretch(),
                                   aligned(m_title, Qt::AlignHCenter),
                                   gap(8),
                                   aligned(m_subtitle, Qt::AlignHCenter),
                                   gap(40 - SearchBox::shadowRoom),
                                   aligned(m_box, Qt::AlignHCenter),
                                   aligned(m_warningPlace, Qt::AlignHCenter),
                                   aligned(m_listPlace, Qt::AlignHCenter),
                                   stretch(),
                               }));
    return page;
}

void SearchView::connectParts()
{
    connect(&m_viewModel, &AppViewModel::changed, this, &SearchView::takeNote);
    connect(&m_box, &SearchBox::queryChanged, this, &SearchView::showList);
    connect(&m_box, &SearchBox::queryTyped, this, &SearchView::prepare);
    connect(&m_box, &SearchBox::submitted, this, &SearchView::submit);
    connect(&m_recentSearches, &SearchList::clear, &m_viewModel, &AppViewModel::clearHistory);
    connect(&m_settings, &PlainButton::clicked, this,
            [this] { m_viewModel.setShowingSettings(true); });
}

void SearchView::submit()
{
    const QString query = m_box.query().trimmed();
    SearchList* list = shownList();
    if (list && list->currentRow())
        list->pressCurrent();
    else if (!query.isEmpty())
        m_viewModel.search(query);
}

void SearchView::searchAgain(const QString& search)
{
    m_chosen = search;
    m_box.setQuery(search);
    m_viewModel.search(search); // all of it, however much the field takes
}

void SearchView::takeNote(AppViewModel::Changes what)
{
    using Change = AppViewModel::Change;
    // Not before it is back: the words stay while the screen fades.
    if (what.testFlag(Change::isShowingEntry) && !m_viewModel.isShowingEntry())
        m_box.setQuery(m_chosen = QString());
    if (what & (Change::searchHistory | Change::savedEntries))
        showList();
    if (what.testFlag(Change::fontSize))
        m_box.setTextSize(pointSize(m_viewModel.fontSize()));
}

/// The latest searches, or what there is of what is being typed: then the field stays where it is
/// while that gets less.
void SearchView::showList()
{
    const SearchList* before = shownList();
    const bool wasWalked = before && before->currentRow();
    const QString query = m_box.query();
    m_recentSearches.setSearches(m_viewModel.searchHistory());
    m_keptEntries.setSearches(
        query == m_chosen ? QStringList() : m_viewModel.savedEntries(query, mostSearchesListed));
    SearchList* list = query.isEmpty() ? &m_recentSearches : &m_keptEntries;
    m_listPlace.showPart(list->isEmpty() ? nullptr : list,
                         query.isEmpty() || list->isEmpty() ? 0 : m_listPlace.height());
    if (wasWalked)
        pointOut(*m_box.focusProxy());
}

SearchList* SearchView::shownList()
{
    for (SearchList* list : std::array<SearchList*, 2>{&m_recentSearches, &m_keptEntries})
        if (!list->isHidden())
            return list;
    return nullptr;
}

/// Whether the key goes to another row of the list.
bool SearchView::walk(const QKeyEvent& key)
{
    SearchList* list = shownList();
    const bool isArrow = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
    if (!list || !isArrow || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    list->step(key.key() == Qt::Key_Up ? -1 : 1);
    QWidget& reached = list->currentRow() ? *list->currentRow() : *m_box.focusProxy();
    m_scrollArea.showPart(reached, reached.rect());
    pointOut(reached);
    return true;
}

bool SearchView::eventFilter(QObject* field, QEvent* event)
{
    const auto* key = event->type() == QEvent::KeyPress ? dynamic_cast<QKeyEvent*>(event) : nullptr;
    return (key && walk(*key)) || QWidget::eventFilter(field, event);
}

QString SearchView::bottomBarText() const
{
    QStringList hints = {tr("⌘K  New search")};
    const QString label = m_shortcutLabel();
    if (!label.isEmpty())
        hints.append(label + tr("  Open from anywhere"));
    return hints.join(between);
}

void SearchView::showHints()
{
    m_bottomBar.setText(bottomBarText());
    QStringList hints = bottomBarText().split(between);
    hints.first() = spelledOut(hints.constFirst(), u"Ctrl"); // which does the same in the panel
    m_bottomBar.setToolTip(spelledOut(hints.join(u'\n')));
}

void SearchView::askForKeys()
{
    const KeychainService& keychain = m_keys.keychain();
    const bool usesGemini = details(m_viewModel.aiModel()).provider == Provider::google;
    m_hasKey = false;
    m_keys.askPresence(keychain.anthropicAccount, this, [=, this](KeyPresence presence) {
        m_warningPlace.showPart(presence == KeyPresence::present ? nullptr : &m_warning);
        m_hasKey |= !usesGemini && presence == KeyPresence::present;
    });
    if (usesGemini)
        m_keys.askPresence(keychain.geminiAccount, this, [this](KeyPresence presence) {
            m_hasKey = presence == KeyPresence::present;
        });
}

/// With the first letter; and with a later one, when what was prepared then has gone.
void SearchView::prepare(const QString& query)
{
    if (m_hasKey && !query.trimmed().isEmpty())
        m_viewModel.prepareSearch();
}

void SearchView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    showHints();
    afterShowing(this, &SearchView::askForKeys);
    m_box.setFocus();
}

} // namespace varno

#include "app/SearchView.h"

#include "kit/Layout.h"

#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

SearchView::SearchView(AppViewModel& viewModel, KeychainTasks& keys,
                       std::function<QString()> shortcutLabel, QWidget* parent,
                       AnimationSetting& animationSetting)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_keys(keys)
    , m_shortcutLabel(std::move(shortcutLabel))
    , m_title(tr("VARNO"), {.size = 42, .weight = QFont::Light, .tracking = 8})
    , m_subtitle(tr("An AI Encyclopedia"), {.size = 13, .tracking = 2, .opacity = 0.55})
    , m_warningSymbol(Symbol::exclamationmarkTriangle, {.size = 11, .role = StandardColor::orange})
    , m_warningText(tr("Add your Anthropic API key in Settings to get started."),
                    {.size = 12, .role = StandardColor::orange})
    , m_recentPlace(animationSetting)
    , m_bottomBar({}, {.size = 11, .opacity = 0.35})
    , m_settings(Symbol::gearshape, {.symbol = {.size = 13, .opacity = 0.45}})
{
    m_scrollArea.setContent(*page());
    setLayout(column({}, {
                             grow(m_scrollArea),
                             row({.horizontal = 24}, {m_bottomBar, stretch(), m_settings}),
                             gap(16),
                         }));
    setFocusProxy(&m_box);
    m_settings.setToolTip(tr("Settings"));
    m_settings.setFocusPolicy(Qt::NoFocus);
    m_warning.hide();
    m_box.setTextSize(pointSize(viewModel.fontSize()));
    showRecentSearches();
    connectParts();
}

QWidget* SearchView::page()
{
    // Both of these stand 16 points below what is there above them; the box has its own room below.
    constexpr int above = 16 - SearchBox::shadowRoom;
    m_warning.setLayout(row({.spacing = 6}, {m_warningSymbol, m_warningText}));
    m_warning.layout()->setContentsMargins(0, above, 0, SearchBox::shadowRoom);
    m_recentSearches.layout()->setContentsMargins(0, above, 0, 0);
    m_recentPlace.setPart(m_recentSearches);
    auto* page = new QWidget;
    page->setLayout(column({}, {
                                   stretch(),
                                   aligned(m_title, Qt::AlignHCenter),
                                   gap(8),
                                   aligned(m_subtitle, Qt::AlignHCenter),
                                   gap(40 - SearchBox::shadowRoom),
                                   aligned(m_box, Qt::AlignHCenter),
                                   aligned(m_warning, Qt::AlignHCenter),
                                   aligned(m_recentPlace, Qt::AlignHCenter),
                                   stretch(),
                               }));
    return page;
}

void SearchView::connectParts()
{
    connect(&m_viewModel, &AppViewModel::changed, this, &SearchView::takeNote);
    connect(&m_box, &SearchBox::queryChanged, this, &SearchView::showRecentSearches);
    connect(&m_box, &SearchBox::queryTyped, this, &SearchView::prepare);
    connect(&m_box, &SearchBox::submitted, this, &SearchView::submit);
    connect(&m_recentSearches, &RecentSearches::searchPressed, this, &SearchView::searchAgain);
    connect(&m_recentSearches, &RecentSearches::clear, &m_viewModel, &AppViewModel::clearHistory);
    connect(&m_settings, &PlainButton::clicked, this,
            [this] { m_viewModel.setShowingSettings(true); });
}

void SearchView::submit()
{
    const QString query = m_box.query().trimmed();
    if (!query.isEmpty())
        m_viewModel.search(query);
}

void SearchView::searchAgain(const QString& search)
{
    m_box.setQuery(search);
    m_viewModel.search(search); // all of it, however much the field takes
}

void SearchView::takeNote(AppViewModel::Changes what)
{
    using Change = AppViewModel::Change;
    // Not before it is back: the words stay while the screen fades.
    if (what.testFlag(Change::isShowingEntry) && !m_viewModel.isShowingEntry())
        m_box.setQuery({});
    if (what.testFlag(Change::searchHistory))
        showRecentSearches();
    if (what.testFlag(Change::fontSize))
        m_box.setTextSize(pointSize(m_viewModel.fontSize()));
}

void SearchView::showRecentSearches()
{
    m_recentSearches.setSearches(m_viewModel.searchHistory());
    m_recentPlace.setPartVisible(m_box.query().isEmpty() && !m_viewModel.searchHistory().isEmpty());
}

QString SearchView::bottomBarText() const
{
    QStringList hints = {tr("⌘K  New search")};
    const QString label = m_shortcutLabel();
    if (!label.isEmpty())
        hints.append(label + tr("  Open from anywhere"));
    return hints.join(u"    "_s);
}

void SearchView::askForKeys()
{
    const KeychainService& keychain = m_keys.keychain();
    const bool usesGemini = details(m_viewModel.aiModel()).provider == Provider::google;
    m_hasKey = false;
    m_keys.askPresence(keychain.anthropicAccount, this, [=, this](KeyPresence presence) {
        m_warning.setVisible(presence != KeyPresence::present);
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
    m_bottomBar.setText(bottomBarText());
    askForKeys();
    m_box.setFocus();
}

} // namespace varno

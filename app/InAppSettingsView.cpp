#include "app/InAppSettingsView.h"

#include "app/SettingsSection.h"
#include "kit/Layout.h"

#include <QScrollBar>

#include <array>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

using Change = AppViewModel::Change;
constexpr AppViewModel::Changes shownChanges =
    Change::fontSize | Change::theme | Change::aiModel | Change::webSearchEnabled;

const TextStyle rowStyle{.size = 13};
const TextStyle helpStyle{.size = 11, .opacity = 0.45};
const TextStyle valueStyle{.size = 13, .opacity = 0.5};

} // namespace

InAppSettingsView::InAppSettingsView(AppViewModel& viewModel, KeychainTasks& keys,
                                     const PanelShortcut& shortcut, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_title(tr("SETTINGS"), {.size = 12, .tracking = 3, .opacity = 0.6})
    , m_done(tr("Done"), {.text = {.size = 13, .role = ColorRole::accent}})
    , m_anthropicKey(keys)
    , m_geminiKey(keys)
    , m_noKeyStore(tr("No key store answers on this system, so keys cannot be kept."),
                   {.size = 11, .role = StandardColor::orange}, Overflow::wrap)
    , m_shortcutTitle(tr("Open Varno"), rowStyle)
    , m_shortcutHelp(tr("Opens the window from any application."), helpStyle)
    , m_shortcutRecorder(shortcut.makeRecorder())
    , m_shortcutNotice(shortcut.makeNotice())
    , m_fontSizeTitle(tr("Font Size"), rowStyle)
    , m_themeTitle(tr("Theme"), rowStyle)
    , m_webSearchTitle(tr("Web Search"), rowStyle)
    , m_webSearchHelp(tr("Allows the model to search the web for more accurate, up-to-date "
                         "information. Uses additional API credits."),
                      helpStyle, Overflow::wrap)
    , m_modelTitle(tr("Model"), rowStyle)
    , m_model({}, valueStyle)
    , m_versionTitle(tr("Version"), rowStyle)
    , m_version(u"1.0"_s, valueStyle)
{
    m_scrollArea.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // its room is a margin's
    m_scrollArea.setContent(*sections());
    setLayout(column({}, {
                             row({.horizontal = 24, .vertical = 12}, {m_title, stretch(), m_done}),
                             m_rule,
                             grow(m_scrollArea),
                         }));
    setFocusProxy(&m_scrollArea);
    m_noKeyStore.hide();
    m_webSearch.setAccessibleName(m_webSearchTitle.text());
    m_webSearch.setAccessibleDescription(m_webSearchHelp.text());
    showPreferences();
    connectParts();
}

QWidget* InAppSettingsView::sections()
{
    auto* list = new QWidget;
    auto* anthropic = new SettingsSection(tr("Anthropic API Key"),
                                          column({.spacing = 8}, {m_anthropicKey, m_noKeyStore}));
    auto* gemini = new SettingsSection(tr("Gemini API Key"), column({}, {m_geminiKey}));
    auto* shortcut = new SettingsSection(tr("Global Shortcut"), shortcutRow());
    auto* appearance = new SettingsSection(tr("Appearance"), appearanceRows());
    auto* content = new SettingsSection(tr("Content"), contentRows());
    auto* about = new SettingsSection(tr("About"), aboutRows());
    // The scroll bar is a part of the margin beside it.
    const int bar = m_scrollArea.verticalScrollBar()->sizeHint().width();
    list->setLayout(row(
        {}, {gap(bar),
             column({.spacing = 28, .horizontal = 24 - bar, .vertical = 24},
                    {*anthropic, *gemini, *shortcut, *appearance, *content, *about, stretch()})}));
    return list;
}

QLayout* InAppSettingsView::shortcutRow()
{
    QBoxLayout* texts = column({.spacing = 2}, {m_shortcutTitle, m_shortcutHelp});
    return column({.spacing = 8}, {
                                      row({.spacing = 12}, {texts, stretch(), *m_shortcutRecorder}),
                                      *m_shortcutNotice,
                                  });
}

QLayout* InAppSettingsView::appearanceRows()
{
    return column({.spacing = 12}, {
                                       row({}, {m_fontSizeTitle, stretch(), m_fontSize}),
                                       row({}, {m_themeTitle, stretch(), m_theme}),
                                   });
}

QLayout* InAppSettingsView::contentRows()
{
    // The help gives way to the switch, and takes more lines.
    QBoxLayout* texts = column({.spacing = 2}, {m_webSearchTitle, m_webSearchHelp});
    QBoxLayout* webSearch = row({.spacing = 24}, {texts, m_webSearch});
    webSearch->setStretchFactor(texts, 1);
    return column({.spacing = 12}, {m_models, webSearch});
}

QLayout* InAppSettingsView::aboutRows()
{
    return column({.spacing = 8}, {
                                      row({}, {m_modelTitle, stretch(), m_model}),
                                      row({}, {m_versionTitle, stretch(), m_version}),
                                  });
}

void InAppSettingsView::connectParts()
{
    connect(&m_viewModel, &AppViewModel::changed, this, &InAppSettingsView::takeNote);
    connect(&m_done, &PlainButton::clicked, this,
            [this] { m_viewModel.setShowingSettings(false); });
    connect(&m_fontSize, &FontSizeControl::fontSizePressed, &m_viewModel,
            &AppViewModel::setFontSize);
    connect(&m_theme, &ThemeMenuButton::themeChosen, &m_viewModel, &AppViewModel::setTheme);
    connect(&m_models, &ModelList::modelPressed, &m_viewModel, &AppViewModel::setAIModel);
    connect(&m_webSearch, &Switch::toggled, this, [this](bool enabled) {
        if (enabled != m_viewModel.webSearchEnabled())
            m_viewModel.setWebSearchEnabled(enabled);
    });
    for (APIKeyRow* row : std::array<APIKeyRow*, 2>{&m_anthropicKey, &m_geminiKey})
        connect(row, &APIKeyRow::presenceChanged, this, &InAppSettingsView::showKeyStore);
}

/// One notice speaks for both keys, and stands where one looks first.
void InAppSettingsView::showKeyStore()
{
    m_noKeyStore.setVisible(m_anthropicKey.presence() == KeyPresence::unreachable ||
                            m_geminiKey.presence() == KeyPresence::unreachable);
}

void InAppSettingsView::takeNote(AppViewModel::Changes what)
{
    if (what & shownChanges)
        showPreferences();
}

void InAppSettingsView::showPreferences()
{
    m_fontSize.setFontSize(m_viewModel.fontSize());
    m_theme.setTheme(m_viewModel.theme());
    m_models.setModel(m_viewModel.aiModel());
    m_webSearch.setChecked(m_viewModel.webSearchEnabled());
    m_model.setText(rawValue(m_viewModel.aiModel()));
}

void InAppSettingsView::reset()
{
    m_anthropicKey.forget();
    m_geminiKey.forget();
    m_scrollArea.verticalScrollBar()->setValue(0);
}

void InAppSettingsView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_anthropicKey.refresh();
    m_geminiKey.refresh();
}

} // namespace varno

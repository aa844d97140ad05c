#include "app/ContentView.h"

#include "app/InAppSettingsView.h"
#include "app/ScreenTransition.h"
#include "app/SearchView.h"
#include "kit/CommandKeys.h"
#include "reader/EntryView.h"

#include <QCoreApplication>
#include <QShortcut>

#include <utility>

namespace varno {

using namespace Qt::StringLiterals;

ContentView::ContentView(AppViewModel& viewModel, KeychainTasks& keys,
                         const PanelShortcut& shortcut, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_keys(keys)
    , m_shortcut(shortcut)
    , m_search(new SearchView(viewModel, keys, shortcut.label, this))
    , m_shown(m_search)
    , m_transition(new ScreenTransition(this))
{
    bindKeys();
    connect(&viewModel, &AppViewModel::changed, this, &ContentView::takeNote);
    setFocusProxy(m_shown);
    goTo(dueScreen());
}

template <typename Action>
void ContentView::bind(const QList<QKeySequence>& keys, Action action)
{
    auto* shortcut = new QShortcut(this);
    shortcut->setKeys(commandKeys(keys));
    shortcut->setAutoRepeat(false); // a key that is held goes one step
    connect(shortcut, &QShortcut::activated, this, action);
}

void ContentView::bindKeys()
{
    // “Meta” is the key with the system's sign on it. In a text field Ctrl+Left stays the field's.
    bind({u"Escape"_s}, &ContentView::escape);
    bind({u"Ctrl+Left"_s, u"Meta+Left"_s, u"Alt+Left"_s}, &ContentView::goBack);
    bind({u"Ctrl+K"_s, u"Meta+K"_s}, &ContentView::newSearch);
    bind({u"Ctrl+,"_s, u"Meta+,"_s}, &ContentView::toggleSettings);
    bind({u"Ctrl+Q"_s, u"Meta+Q"_s}, &QCoreApplication::quit);
}

void ContentView::escape()
{
    if (m_viewModel.isShowingSettings())
        m_viewModel.setShowingSettings(false);
    else if (m_viewModel.isShowingEntry())
        m_viewModel.newSearch();
    else
        Q_EMIT hideRequested();
}

void ContentView::takeNote(AppViewModel::Changes what)
{
    using Change = AppViewModel::Change;
    if (what & (Change::isShowingSettings | Change::isShowingEntry))
        goTo(dueScreen());
}

QWidget& ContentView::dueScreen()
{
    if (m_viewModel.isShowingSettings()) {
        if (!m_settings) {
            m_settings = new InAppSettingsView(m_viewModel, m_keys, m_shortcut, this);
            m_settings->hide();
        }
        return *m_settings;
    }
    if (m_viewModel.isShowingEntry()) {
        if (!m_entry) {
            m_entry = new EntryView(m_viewModel, this);
            m_entry->hide();
        }
        return *m_entry;
    }
    return *m_search;
}

void ContentView::goTo(QWidget& next)
{
    QWidget& previous = *m_shown;
    if (&previous == &next)
        return;
    if (&previous == m_settings)
        m_settings->reset();
    m_transition->finish();
    const QPixmap picture = isVisible() ? previous.grab() : QPixmap();
    m_shown = &next;
    next.setGeometry(rect());
    setFocusProxy(&next);
    next.show();
    next.setFocus();
    previous.hide();
    if (picture.isNull())
        return;
    using Kind = ScreenTransition::Kind;
    const Kind kind = &next == m_settings       ? Kind::rise
                      : &previous == m_settings ? Kind::sink
                                                : Kind::fade;
    m_transition->start(picture, next, kind);
}

void ContentView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_viewModel.dropPreparation();
}

void ContentView::resizeEvent(QResizeEvent*)
{
    m_transition->finish();
    m_shown->setGeometry(rect());
}

} // namespace varno

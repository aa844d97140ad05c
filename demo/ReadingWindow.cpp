#include "demo/ReadingWindow.h"

#include "kit/Theme.h"
#include "reader/EntryView.h"

#include <QLineEdit>
#include <QShortcut>
#include <QStackedLayout>

#include <algorithm>

namespace varno {

using namespace Qt::StringLiterals;

ReadingWindow::ReadingWindow(AppViewModel& viewModel)
    : m_viewModel(viewModel)
    , m_entry(new EntryView(viewModel, this))
    , m_query(new QLineEdit)
    , m_screens(new QStackedLayout(this))
{
    setWindowTitle(u"Varno — demonstration"_s);
    setMinimumSize(640, 440);
    resize(860, 620);
    varno::setTheme(*this, m_viewModel.theme());

    m_screens->addWidget(m_entry);
    m_screens->addWidget(searchPage());
    bindKeys();
    connect(&m_viewModel, &AppViewModel::changed, this, &ReadingWindow::onChanged);
    showScreen();
}

QString ReadingWindow::keys()
{
    return u"Ctrl+1, 2, 3             theme: cream, amber, dark\n"
           "Ctrl+plus, Ctrl+minus    size of the text\n"
           "Ctrl+F                   find in the entry\n"
           "Alt+Left                 back\n"
           "Ctrl+K                   new search\n"_s;
}

QWidget* ReadingWindow::searchPage()
{
    auto* page = new QWidget;
    m_query->setPlaceholderText(u"Search for anything…"_s);
    m_query->setFixedWidth(420);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(m_query, 0, Qt::AlignCenter);
    connect(m_query, &QLineEdit::returnPressed, this,
            [this] { m_viewModel.search(m_query->text()); });
    return page;
}

void ReadingWindow::bindKeys()
{
    // “Meta” is the key with the system's sign on it. In a text field the arrows stay the field's,
    // and Ctrl+F is a matter of the entry screen.
    bind({u"Alt+Left"_s, u"Ctrl+Left"_s, u"Meta+Left"_s}, [this] { m_viewModel.goBack(); });
    bind({u"Ctrl+K"_s, u"Meta+K"_s}, [this] { m_viewModel.newSearch(); });
    bind({u"Ctrl+1"_s}, [this] { m_viewModel.setTheme(AppTheme::cream); });
    bind({u"Ctrl+2"_s}, [this] { m_viewModel.setTheme(AppTheme::amber); });
    bind({u"Ctrl+3"_s}, [this] { m_viewModel.setTheme(AppTheme::dark); });
    bind({u"Ctrl++"_s, u"Ctrl+="_s}, [this] { changeFontSize(+1); });
    bind({u"Ctrl+-"_s}, [this] { changeFontSize(-1); });
}

void ReadingWindow::bind(const QStringList& keys, const std::function<void()>& action)
{
    for (const QString& key : keys)
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, action);
}

void ReadingWindow::changeFontSize(int step)
{
    constexpr int largest = static_cast<int>(FontSize::large);
    const int size = static_cast<int>(m_viewModel.fontSize()) + step;
    m_viewModel.setFontSize(static_cast<FontSize>(std::clamp(size, 0, largest)));
}

void ReadingWindow::onChanged(AppViewModel::Changes what)
{
    if (what & AppViewModel::Change::theme)
        varno::setTheme(*this, m_viewModel.theme());
    if (what & AppViewModel::Change::isShowingEntry)
        showScreen();
}

void ReadingWindow::showScreen()
{
    m_screens->setCurrentIndex(m_viewModel.isShowingEntry() ? 0 : 1);
    if (m_viewModel.isShowingEntry()) {
        m_entry->setFocus();
    } else {
        m_query->clear();
        m_query->setFocus();
    }
}

} // namespace varno

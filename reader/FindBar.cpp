#include "reader/FindBar.h"

#include "kit/Accessibility.h"
#include "kit/InputLimit.h"
#include "kit/Layout.h"

namespace varno {

using namespace Qt::StringLiterals;

namespace {

/// A counter that changes again within that is not told yet.
constexpr std::chrono::milliseconds rest(300);

const TextStyle counterStyle{.size = 11, .equalDigits = true, .opacity = 0.45};
const TextStyle noResultsStyle{.size = 11, .role = StandardColor::red, .opacity = 0.7};
const ButtonStyle buttonStyle{
    .symbol = {.size = 10, .weight = QFont::DemiBold, .opacity = 0.6},
    .frame = {22, 22},
};

/// No frame, no ground, no space of its own around the text.
void makePlain(QLineEdit& field)
{
    QPalette palette;
    palette.setBrush(QPalette::Base, Qt::NoBrush);
    field.setPalette(palette);
    field.setFont(font({.size = 13}));
    field.setFrame(false);
    field.setMaxLength(longestSearch);
    field.setValidator(new InputLimit(costliestSearch, &field));
    field.setFixedHeight(buttonStyle.frame.height()); // the bar is as high as its buttons
}

} // namespace

FindBar::FindBar(QWidget* parent)
    : Surface(BottomEdge::ruled, parent)
    , m_symbol(Symbol::magnifyingGlass, {.size = 12, .opacity = 0.4})
    , m_previous(Symbol::chevronUp, buttonStyle)
    , m_next(Symbol::chevronDown, buttonStyle)
    , m_close(Symbol::xmark, buttonStyle)
{
    setLayout(row({.spacing = 10, .horizontal = 20, .vertical = 8},
                  {
                      m_symbol,
                      grow(m_field),
                      m_counter,
                      row({.spacing = 2}, {m_previous, m_next}),
                      m_close,
                  }));
    setAccessibleName(tr("Find in entry"));

    makePlain(m_field);
    m_field.setPlaceholderText(tr("Find in entry…"));
    m_field.setAccessibleName(tr("Find in entry"));
    m_previous.setToolTip(tr("Previous match (⇧↩)"));
    m_next.setToolTip(tr("Next match (↩)"));
    m_close.setAccessibleName(tr("Close"));
    setAccessibleRole(m_counter, QAccessible::Notification);
    m_announcement.setSingleShot(true);
    m_announcement.setInterval(rest);
    showCounter();

    connect(&m_announcement, &QTimer::timeout, this, [this] {
        if (m_counter.isVisible())
            announce(m_counter);
    });
    connect(&m_field, &QLineEdit::textChanged, this, [this](const QString& text) {
        showCounter();
        Q_EMIT findTextChanged(text);
    });
    connect(&m_field, &QLineEdit::returnPressed, this, [this] { step(1); });
    connect(&m_previous, &PlainButton::clicked, this, [this] { step(-1); });
    connect(&m_next, &PlainButton::clicked, this, [this] { step(1); });
    connect(&m_close, &PlainButton::clicked, this, &FindBar::closed);
}

void FindBar::setFindText(const QString& text)
{
    if (text != m_field.text())
        m_field.setText(text);
}

void FindBar::setMatches(int currentMatchIndex, int totalMatchCount)
{
    m_currentMatchIndex = currentMatchIndex;
    m_totalMatchCount = totalMatchCount;
    showCounter();
}

void FindBar::takeFocus()
{
    m_field.setFocus(Qt::ShortcutFocusReason);
    m_field.selectAll();
}

void FindBar::step(int matches)
{
    if (m_totalMatchCount > 0)
        Q_EMIT currentMatchIndexChanged((m_currentMatchIndex + matches + m_totalMatchCount) %
                                        m_totalMatchCount);
}

void FindBar::showCounter()
{
    m_counter.setVisible(!m_field.text().isEmpty());
    m_counter.setTextStyle(m_totalMatchCount > 0 ? counterStyle : noResultsStyle);
    const QString before = m_counter.text();
    m_counter.setText(m_totalMatchCount > 0
                          ? tr("%1 of %2").arg(m_currentMatchIndex + 1).arg(m_totalMatchCount)
                          : tr("No results"));
    if (QAccessible::isActive() && m_counter.text() != before)
        m_announcement.start();
}

} // namespace varno

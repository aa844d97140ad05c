#include "reader/TOCEntry.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/RoundedShape.h"
#include "kit/TextCuts.h"

#include <QFontMetrics>
#include <QPainter>

namespace varno {
namespace {

constexpr double markInset = 8; ///< of the mark from both edges of the sidebar
constexpr double markRadius = 5;
constexpr double focusRingWidth = 1.5;

const TextStyle numberStyle{.size = 11, .equalDigits = true, .opacity = 0.75};
const TextStyle nameStyle{.size = 13, .opacity = 0.8, .limit = contentsEntryLimit};
const TextStyle activeNameStyle{
    .size = 13, .weight = QFont::Medium, .role = ColorRole::accent, .limit = contentsEntryLimit};

} // namespace

TOCEntry::TOCEntry(int number, const QString& section, QWidget* parent)
    : PressableButton(parent)
    , m_section(section)
    , m_number(QString::number(number), numberStyle)
    , m_name(section, nameStyle, Overflow::wrap)
{
    setLayout(
        row({.horizontal = 16, .vertical = 6}, {aligned(m_number, Qt::AlignTop), grow(m_name)}));
    m_number.setFixedSize(numberWidth, QFontMetrics(m_name.font()).height()); // of the first line
    for (ThemedText* text : {&m_number, &m_name})
        text->setAttribute(Qt::WA_TransparentForMouseEvents);

    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setAccessibleName(shortened(section, toolTipLimit));
    setAccessibleRole(*this, QAccessible::ListItem);
    setAccessiblyCurrent(*this, false);
}

void TOCEntry::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    m_name.setTextStyle(active ? activeNameStyle : nameStyle);
    setAccessibleDescription(active ? tr("On show") : QString());
    setAccessiblyCurrent(*this, active);
    update();
}

void TOCEntry::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF mark = QRectF(rect()).adjusted(markInset, 0, -markInset, 0);
    if (m_active || underMouse()) {
        const double faint = hoverOpacity();
        fillRounded(painter, mark, markRadius,
                    m_active ? themeColor(palette(), ColorRole::accent, 2 * faint)
                             : themeColor(palette(), ColorRole::text, faint));
    }
    if (hasFocus())
        outlineRounded(painter, mark, markRadius + focusRingWidth / 2, focusRingWidth,
                       themeColor(palette(), ColorRole::accent));
}

} // namespace varno

#include "reader/EntryHeader.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/TextCuts.h"

namespace varno {

EntryHeader::EntryHeader(QWidget* parent)
    : QWidget(parent)
    , m_title({}, {.size = 26, .design = FontDesign::serif, .tracking = 1, .limit = titleLimit},
              Overflow::wrap)
{
    setLayout(column({.spacing = 4}, {m_title, m_rule}));
    setAccessibleRole(m_title, QAccessible::Heading, 1);
}

void EntryHeader::setTitle(const QString& title)
{
    const QString kept = shortened(title, toolTipLimit);
    m_title.setText(kept.toUpper());
    m_title.setAccessibleName(kept); // capitals are for the eye
}

QString EntryHeader::selectedTitle() const
{
    const TextRange range = m_title.selection();
    QString selected;
    qsizetype shown = 0; // some letters are several as capitals
    for (const char32_t letter : title().toUcs4()) {
        const QString written = QString::fromUcs4(&letter, 1);
        if (shown >= range.begin && shown < range.end)
            selected += written;
        shown += written.toUpper().size();
    }
    return selected;
}

} // namespace varno

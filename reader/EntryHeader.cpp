#include "reader/EntryHeader.h"

#include "kit/Layout.h"
#include "kit/TextCuts.h"

namespace varno {

EntryHeader::EntryHeader(QWidget* parent)
    : QWidget(parent)
    , m_title({}, {.size = 26, .design = FontDesign::serif, .tracking = 1, .limit = titleLimit},
              Overflow::wrap)
{
    setLayout(column({.spacing = 4}, {m_title, m_rule}));
}

void EntryHeader::setTitle(const QString& title)
{
    const QString kept = shortened(title, toolTipLimit);
    m_title.setText(kept.toUpper());
    m_title.setAccessibleName(kept); // capitals are for the eye
}

} // namespace varno

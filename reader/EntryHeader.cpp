#include "reader/EntryHeader.h"

#include "kit/Layout.h"

namespace varno {

EntryHeader::EntryHeader(QWidget* parent)
    : QWidget(parent)
    , m_title({}, {.size = 26, .design = FontDesign::serif, .tracking = 1}, Overflow::wrap)
{
    setLayout(column({.spacing = 4}, {m_title, m_rule}));
}

void EntryHeader::setTitle(const QString& title)
{
    m_title.setText(title.toUpper());
    m_title.setAccessibleName(title); // capitals are for the eye
}

} // namespace varno

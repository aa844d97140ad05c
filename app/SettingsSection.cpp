#include "app/SettingsSection.h"

#include "kit/Layout.h"

namespace varno {

SettingsSection::SettingsSection(const QString& title, QLayout* content, QWidget* parent)
    : QWidget(parent)
    , m_title(title, {.size = 9, .tracking = 2, .opacity = 0.4})
{
    setLayout(column({.spacing = 10}, {m_title, m_rule, content}));
    setAccessibleName(title);
}

} // namespace varno

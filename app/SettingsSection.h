#pragma once

#include "kit/Rule.h"
#include "kit/ThemedText.h"

namespace varno {

/// A titled group of settings.
class SettingsSection final : public QWidget {
    Q_OBJECT

public:
    /// Owns the layout of the content.
    SettingsSection(const QString& title, QLayout* content, QWidget* parent = nullptr);

private:
    ThemedText m_title;
    Rule m_rule;
};

} // namespace varno

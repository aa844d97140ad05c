#pragma once

#include "kit/Rule.h"
#include "kit/ThemedText.h"

namespace varno {

/// A titled group of settings.
class SettingsSection final : public QWidget {
    Q_OBJECT

public:
    /// Takes over the content's layout.
    SettingsSection(const QString& title, QLayout* content, QWidget* parent = nullptr);

private:
    ThemedText m_title;
    Rule m_rule;
};

} // namespace varno

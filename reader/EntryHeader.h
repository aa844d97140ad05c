#pragma once

#include "kit/Rule.h"
#include "kit/ThemedText.h"

#include <QWidget>

namespace varno {

/// The title of the page, over a rule.
class EntryHeader final : public QWidget {
    Q_OBJECT

public:
    explicit EntryHeader(QWidget* parent = nullptr);

    void setTitle(const QString& title);

private:
    ThemedText m_title;
    Rule m_rule;
};

} // namespace varno

#pragma once

#include "kit/Rule.h"
#include "kit/SelectableText.h"

#include <QWidget>

namespace varno {

/// The title of the page, over a rule.
class EntryHeader final : public QWidget {
    Q_OBJECT

public:
    explicit EntryHeader(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// The title, as far as it is kept.
    [[nodiscard]] QString title() const { return m_title.accessibleName(); }
    /// What is selected of it, in the letters that it is written in.
    [[nodiscard]] QString selectedTitle() const;
    [[nodiscard]] SelectableText& text() { return m_title; }

private:
    SelectableText m_title;
    Rule m_rule;
};

} // namespace varno

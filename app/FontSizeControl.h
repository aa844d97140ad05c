#pragma once

#include "core/Appearance.h"
#include "kit/PlainButton.h"
#include "kit/Rule.h"

#include <array>

namespace varno {

/// A segmented control for the text size.
class FontSizeControl final : public QWidget {
    Q_OBJECT

public:
    explicit FontSizeControl(QWidget* parent = nullptr);

    void setFontSize(FontSize size);

Q_SIGNALS:
    void fontSizePressed(varno::FontSize size);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<PlainButton, 3> m_segments;
    std::array<Rule, 2> m_dividers;
};

} // namespace varno

#pragma once

#include "kit/Symbol.h"

#include <QWidget>

namespace varno {

/// A symbol by itself, of a fixed size, in the colours of the palette that it inherits. It says
/// nothing to a screen reader: the text beside it does.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    explicit SymbolView(Symbol symbol, const SymbolStyle& style = {}, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol m_symbol;
    SymbolStyle m_style;
};

} // namespace varno

#pragma once

#include "kit/Symbol.h"

#include <QWidget>

namespace varno {

/// A symbol as a widget of a fixed size, in the colours of the inherited palette; one that points
/// to a side is mirrored with the interface. Screen readers skip it: the text beside it says as
/// much.
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

#pragma once

#include "kit/PressableButton.h"
#include "kit/Symbol.h"
#include "kit/TextBlock.h"

#include <QFocusFrame>
#include <QPointer>

#include <optional>

namespace varno {

/// The look of a button; all lengths in points.
struct ButtonStyle {
    TextStyle text{};
    SymbolStyle symbol{};
    int spacing = 6;    ///< between symbol and text
    int horizontal = 0; ///< padding left and right
    int vertical = 0;   ///< padding above and below
    QSize frame{};      ///< if given, the size of the whole button, whatever is in it
    double radius = 4;  ///< of the corners of outline and fill
    double outlineWidth = 1;
    std::optional<Ink> outline{};
    std::optional<Ink> fill{};
    Qt::Alignment alignment = Qt::AlignCenter; ///< of the content in a wider button
    Overflow overflow = Overflow::none;        ///< of the text: a button has one line, or elides
};

/// A button that shows a symbol, a text, or the symbol before the text, and nothing else. Hovering
/// and pressing change its opacity, and fill it faintly where it has padding. Return and Space
/// press it.
///
/// It takes the focus from the keyboard alone, and then has a focus ring; `setFocusPolicy` changes
/// that. No character of its text is a mnemonic. An elided text is told by a tool tip unless there
/// is another; of a longer text only as much is kept as a tool tip shows. A button without text
/// needs an accessible name: its tool tip serves as one.
class PlainButton : public PressableButton {
    Q_OBJECT

public:
    explicit PlainButton(const QString& text, const ButtonStyle& style = {},
                         QWidget* parent = nullptr);
    explicit PlainButton(Symbol symbol, const ButtonStyle& style = {}, QWidget* parent = nullptr);
    PlainButton(Symbol symbol, const QString& text, const ButtonStyle& style = {},
                QWidget* parent = nullptr);
    ~PlainButton() override;

    void setText(const QString& text);
    void setButtonStyle(const ButtonStyle& style);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] LaidOutText& laidOut() const;
    [[nodiscard]] double textWidth() const;
    [[nodiscard]] QString spelledToolTip() const;
    [[nodiscard]] QSize sizeFor(double textWidth) const;
    [[nodiscard]] double leadingWidth() const;
    [[nodiscard]] bool hasRoom() const;
    [[nodiscard]] QColor inkFor(Ink ink) const;
    void paintBackground(QPainter& painter) const;
    void paintContent(QPainter& painter) const;
    [[nodiscard]] QRectF mirrored(QRectF place) const;

    ButtonStyle m_style;
    mutable LaidOutText m_laidOut;
    std::optional<Symbol> m_symbol;
    bool m_focusByKeyboard = false;
    QPointer<QFocusFrame> m_focusRing; ///< a sibling, which may go before this button
};

} // namespace varno

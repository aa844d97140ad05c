#pragma once

#include "kit/TextStyle.h"

#include <QList>
#include <QRectF>
#include <QString>
#include <QTextLayout>

#include <optional>

class QColor;
class QPainter;

namespace varno {

/// What becomes of a text that is wider than its place.
enum class Overflow {
    none,  ///< it keeps its width
    elide, ///< it ends in "…"
    wrap,  ///< it goes on in the next line, breaking words that are wider than a line
};

/// A plain text laid out in a width, as far as the limit of its style. Its characters keep their
/// order whatever their script, and no mark in it means anything. Only a text that wraps keeps its
/// line breaks.
class TextBlock {
public:
    static constexpr double unlimited = 1 << 24;

    /// `font` is that of the place where it is drawn, made from the style.
    TextBlock(const QString& text, const TextStyle& style, const QFont& font, Overflow overflow,
              double width = unlimited);

    /// Lays it out in another width. That costs little: the letters keep their shapes.
    void setWidth(double width);

    /// What it covers: up to the end of the longest line, without the tracking behind it.
    [[nodiscard]] QSizeF size() const { return m_size; }
    /// Whether it is not all of the text.
    [[nodiscard]] bool isElided() const { return m_isShortened || m_elided; }

    /// Lines stand in `place` as `alignment` says; left is left, in every script.
    void draw(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
              const QColor& color) const;

private:
    void prepare(QTextLayout& layout, const QString& text, const QFont& font) const;
    void layOut(QTextLayout& layout, QTextOption::WrapMode wrapMode);
    void elide();

    TextStyle m_style;
    Overflow m_overflow;
    double m_width = -1;
    QTextLayout m_whole;
    std::optional<QTextLayout> m_elided; ///< what is drawn instead, where there is no room
    QSizeF m_size;
    bool m_isShortened = false;
};

/// What a text takes up in a width.
struct TextMeasure {
    double width = TextBlock::unlimited;
    QSizeF size;
    bool isElided = false;
};

/// The layout of a text that is asked for more often than it changes.
class LaidOutText {
public:
    /// Makes it that of another text, if it is another one.
    LaidOutText& of(const QString& text, const TextStyle& style, const QFont& font,
                    Overflow overflow);

    [[nodiscard]] TextMeasure measure(double width = TextBlock::unlimited);
    /// Good until the next call of any of these.
    [[nodiscard]] const TextBlock& block(double width);
    /// To be called when the style has changed.
    void reset() { m_block.reset(); }

private:
    QString m_text;
    QFont m_font;
    std::optional<TextBlock> m_block;
    QList<TextMeasure> m_measures; ///< in the widths that were asked for last
};

/// A plain text as a tool tip: shown as it is, as far as the limit of tool tips, and in several
/// lines if it is long.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace varno

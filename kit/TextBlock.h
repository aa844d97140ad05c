#pragma once

#include "kit/TextStyle.h"

#include <QRectF>
#include <QString>
#include <QTextLayout>

class QColor;
class QPainter;

namespace varno {

/// What becomes of a text that is wider than its place.
enum class Overflow {
    none,  ///< it keeps its width
    elide, ///< it ends in "…"
    wrap,  ///< it goes on in the next line, breaking words that are wider than a line
};

/// A plain text laid out in a width. Its characters keep their order whatever their script, and no
/// mark in it means anything. Only a text that wraps keeps its line breaks.
class TextBlock {
public:
    static constexpr double unlimited = 1 << 24;

    /// `font` is that of the place where it is drawn, made from the style.
    TextBlock(const QString& text, const TextStyle& style, const QFont& font, Overflow overflow,
              double width = unlimited);

    /// What it covers: up to the end of the longest line, without the tracking behind it.
    [[nodiscard]] QSizeF size() const { return m_size; }
    [[nodiscard]] bool isElided() const { return m_elided; }

    /// Lines stand in `place` as `alignment` says; left is left, in every script.
    void draw(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
              const QColor& color) const;

private:
    void layOut(const QString& text, const TextStyle& style, double width);
    void elide(const QString& text, const TextStyle& style, double width);

    QTextLayout m_layout;
    QSizeF m_size;
    bool m_elided = false;
};

/// A plain text as a tool tip: shown as it is, and in several lines if it is long.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace varno

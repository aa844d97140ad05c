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

/// The treatment of a text that is wider than its place.
enum class Overflow {
    none,  ///< it keeps its width
    elide, ///< it ends in "…"
    wrap,  ///< it goes on in the next line, breaking words that are wider than a line
};

/// A range of a text, in UTF-16 units.
struct TextRange {
    qsizetype begin = 0;
    qsizetype end = 0;

    bool operator==(const TextRange&) const = default;
};

/// A plain text laid out in a width, up to the limit of its style. Bidirectional controls and
/// markup in it have no effect. Line breaks in it are kept only where it wraps.
class TextBlock {
public:
    static constexpr double unlimited = 1 << 24;

    /// `font` is the widget's font, which was made from the style.
    TextBlock(const QString& text, const TextStyle& style, const QFont& font, Overflow overflow,
              double width = unlimited);

    /// Lays it out in another width, without shaping its glyphs again.
    void setWidth(double width);

    /// The size of the laid-out text: as wide as its longest line, without the tracking at the end.
    [[nodiscard]] QSizeF size() const { return m_size; }
    /// Whether a part of the text is not shown.
    [[nodiscard]] bool isElided() const { return m_isShortened || m_elided; }

    /// Draws the lines in `place`, aligned by `alignment`; left means left in every script.
    void draw(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
              const QColor& color) const;

    // The same lines, of which a range may be selected. Positions are those in the text on show.
    void fillRange(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
                   const TextRange& range, const QColor& color) const;
    [[nodiscard]] qsizetype positionAt(const QPointF& point, const QRectF& place,
                                       Qt::Alignment alignment) const;
    [[nodiscard]] TextRange wordAt(qsizetype position) const;

private:
    [[nodiscard]] const QTextLayout& layout() const { return m_elided ? *m_elided : m_whole; }
    [[nodiscard]] QPointF origin(const QTextLine& line, const QRectF& place,
                                 Qt::Alignment alignment) const;
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

/// The size of a text in a width.
struct TextMeasure {
    double width = TextBlock::unlimited;
    QSizeF size;
    bool isElided = false;
};

/// A cache of the layout of one text.
class LaidOutText {
public:
    /// Switches to that text, and drops the cache if it is another one.
    LaidOutText& of(const QString& text, const TextStyle& style, const QFont& font,
                    Overflow overflow);

    [[nodiscard]] TextMeasure measure(double width = TextBlock::unlimited);
    /// The layout in that width, valid until the next call of any of these.
    [[nodiscard]] const TextBlock& block(double width);
    /// Drops the cache: the style has changed.
    void reset() { m_block.reset(); }

private:
    QString m_text;
    QFont m_font;
    std::optional<TextBlock> m_block;
    QList<TextMeasure> m_measures; ///< in the widths that were asked for last
};

/// A plain text as the text of a tool tip: not read as HTML, up to the limit of tool tips, and
/// wrapped if it is long.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace varno

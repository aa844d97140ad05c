#pragma once

#include "reader/text/PageLayout.h"
#include "reader/text/RowFormat.h"

#include <QPalette>

class QPainter;

namespace varno {

/// Paints what belongs to the rows of a page beside their letters: the marks of lists, the ground
/// of code, the bars of quotes, the lines of tables, and rules.
class RowPainter {
public:
    /// All of them outlive it; the painter draws in the coordinates of the layout.
    RowPainter(QPainter& painter, const PageLayout& layout, const RowFormat& format,
               const QPalette& palette);

    void paint(const QTextBlock& row) const;

private:
    void paintMark(const QTextBlock& row) const;
    void paintGround(const QTextBlock& row) const;
    void paintBars(const QTextBlock& row) const;
    void paintTableLine(const QTextBlock& cell) const;
    void paintRule(const QTextBlock& row) const;
    /// A hairline whose thickness is whole device pixels wherever it stands.
    void fillLine(double x, double y, double length) const;

    QPainter& m_painter;
    const PageLayout& m_layout;
    const RowFormat& m_format;
    const QPalette& m_palette;
};

} // namespace varno

#pragma once

#include <QAbstractTextDocumentLayout>
#include <QHash>
#include <QTextBlock>

#include <vector>

namespace varno {

/// What a cell of a table wants to be as wide as, and what it must.
struct CellWidth {
    double wanted = 0;
    double least = 0;
};

/// Lays out a document of `DocumentWriter`: its rows one below the other, the cells of a table's
/// line side by side.
///
/// What is appended is laid out alone. The columns of a table are as wide as its first lines want
/// them, so a table that grows does not move what is above. Columns that have not room enough share
/// it; a table that is wider even then reaches beyond the column and is moved by `scrollTable`.
class PageLayout final : public QAbstractTextDocumentLayout {
    Q_OBJECT

public:
    /// It belongs to the document. Of that only the end changes, as far as speed matters.
    explicit PageLayout(QTextDocument* document);

    void draw(QPainter* painter, const PaintContext& context) override;
    [[nodiscard]] int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    [[nodiscard]] int pageCount() const override { return 1; }
    /// With the margin below the last row.
    [[nodiscard]] QSizeF documentSize() const override;
    [[nodiscard]] QRectF frameBoundingRect(QTextFrame* frame) const override;
    /// A row's text over the whole width, without its margins; of a cell its part of the width.
    [[nodiscard]] QRectF blockBoundingRect(const QTextBlock& row) const override;

    /// The first row that ends at or below `y`, or the last one.
    [[nodiscard]] QTextBlock rowAt(double y) const;

    /// The line of a table that a cell is in, with its padding, as far as the table reaches.
    [[nodiscard]] QRectF tableLine(const QTextBlock& cell) const;
    /// How much wider than the column the table of a cell is, and how far it is moved.
    struct Overflow {
        double width = 0;
        double offset = 0;
    };
    [[nodiscard]] Overflow tableOverflow(const QTextBlock& cell) const;
    /// Moves the table at a point to the left, as far as it goes; false if nothing moves.
    bool scrollTable(const QPointF& point, double by);

protected:
    void documentChanged(int from, int removed, int added) override;

private:
    /// Where a row is. A row that is no cell is a line of its own.
    struct Place {
        double lineTop = 0; ///< of the text of its line
        double top = 0;
        double bottom = 0;
        double lineBottom = 0; ///< of the line so far
        int table = -1;        ///< the first cell of its table
        int line = 0;          ///< of the table
        CellWidth width;
    };
    struct Columns {
        QList<double> lefts;
        QList<double> widths;
        double width = 0; ///< of them all
        double offset = 0;
        bool isMirrored = false;
    };

    [[nodiscard]] double width() const;
    [[nodiscard]] QRectF room(const QTextBlock& row) const;
    void join(const QTextBlock& row);
    bool updateColumns(int table);
    void place(const QTextBlock& row, bool isChanged);
    void layOut(const QTextBlock& row, const QRectF& room);
    void move(const QTextBlock& row, double y);
    [[nodiscard]] int firstBelow(double y) const;

    std::vector<Place> m_places;   ///< of the rows, by the number of their text blocks
    QHash<int, Columns> m_columns; ///< of the tables, by their first cells
    double m_height = 0;
};

} // namespace varno

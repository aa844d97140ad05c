#pragma once

#include "reader/text/PageLayout.h"
#include "reader/text/RowFormat.h"

#include <QMimeData>
#include <QTextBlock>
#include <QTextBrowser>

#include <memory>

namespace varno {

/// Shows a document written by `DocumentWriter`, with the marks of its lists and the highlights,
/// and lets the reader select, copy and follow links. It does not scroll: whoever shows it gives it
/// the height of its text.
class TextSurface final : public QTextBrowser {
    Q_OBJECT

public:
    explicit TextSurface(QWidget* parent);

    /// Colours and marks; the document is the writer's to change.
    void setFormat(const RowFormat& format);
    void setHighlightText(const QString& text);

    /// The row at `y`, or the nearest one.
    [[nodiscard]] QTextBlock rowAt(int y) const;
    /// The rectangle of a row's text, without its margins.
    [[nodiscard]] QRectF rowRect(const QTextBlock& row) const;

    /// What selecting all and copying gives.
    [[nodiscard]] std::unique_ptr<QMimeData> all() const;
    /// The address of the link that has the focus; empty where none has it.
    [[nodiscard]] QString focusedLink() const;

    /// Never anything: no page loads anything, from wherever.
    QVariant loadResource(int type, const QUrl& name) override;

Q_SIGNALS:
    void selectionDragged(const QPoint& position);
    void linkFocused(const QRect& rect);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void paintHighlights(QPainter& painter, const QTextBlock& row) const;
    bool showAddress(const QPoint& position, const QPoint& globalPosition);

    PageLayout* m_layout; ///< the document's
    RowFormat m_format;
    QString m_highlightText;
};

} // namespace varno

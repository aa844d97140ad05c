#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>

class QScrollArea;
class QWidget;

namespace varno {

/// Scrolls while a selection is dragged beyond the upper or lower edge, faster the further away,
/// and extends the selection.
class SelectionScroller final : public QObject {
    Q_OBJECT

public:
    /// `text` is inside of `area`. Both outlive it.
    SelectionScroller(QScrollArea& area, QWidget& text, QObject* parent = nullptr);

    /// Takes the position of the pointer that drags, in the text's coordinates.
    void drag(const QPoint& position);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] int distanceBeyondEdge() const;
    void scroll();

    QScrollArea& m_area;
    QWidget& m_text;
    QWidget* m_dragged = nullptr; ///< gets the mouse's events
    QPoint m_pointer;             ///< on the screen
    QTimer m_timer;
};

} // namespace varno

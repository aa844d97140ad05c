#pragma once

#include "kit/ThemedText.h"

#include <QElapsedTimer>

namespace varno {

/// A text that the user can select: by dragging, a word by two clicks, all of it by three.
class SelectableText final : public ThemedText {
    Q_OBJECT

public:
    explicit SelectableText(const QString& text = {}, const TextStyle& style = {},
                            Overflow overflow = Overflow::none, QWidget* parent = nullptr);

    /// Another text has nothing selected.
    void setText(const QString& text);

    /// What is selected of the text on show; empty when nothing is.
    [[nodiscard]] TextRange selection() const;
    [[nodiscard]] bool hasSelection() const { return m_anchor != m_position; }
    void clearSelection() { select(0, 0); }

Q_SIGNALS:
    /// The user selects something.
    void selected();
    /// The user has lifted the button after that.
    void selectionEnded();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] qsizetype positionAt(const QMouseEvent& event) const;
    void select(qsizetype anchor, qsizetype position);

    qsizetype m_anchor = 0;
    qsizetype m_position = 0;
    bool m_isDragged = false;
    QElapsedTimer m_sinceDoubleClick;
};

} // namespace varno

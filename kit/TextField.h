#pragma once

#include <QLineEdit>

#include <memory>

namespace varno {

/// The key that Command together with A, C, V, X or Z stands for: the same with Ctrl. Null for any
/// other key.
[[nodiscard]] std::unique_ptr<QKeyEvent> asControlKey(const QKeyEvent& event);

/// A line to type into. With Command no letter is text: it edits as Ctrl does, or does nothing.
class TextField : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace varno

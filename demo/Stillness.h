#pragma once

#include <QElapsedTimer>
#include <QObject>

class QWidget;

namespace varno {

/// Tells when a window has come to rest: when no screen gives way to another, and nothing in it has
/// been moved, laid out or coloured anew for a while. What is painted again in its place, as a
/// cursor that blinks, is no unrest.
class Stillness final : public QObject {
    Q_OBJECT

public:
    explicit Stillness(const QWidget& window);

    [[nodiscard]] bool isStill() const;
    /// Something else has happened that may move the window's contents.
    void disturb() { m_sinceLastMove.start(); }

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    const QWidget& m_window;
    QElapsedTimer m_sinceLastMove;
};

} // namespace varno

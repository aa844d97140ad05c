#pragma once

#include <QObject>

namespace varno {

/// Marks the presses of a key that is held as repeated, and keeps them from being shortcuts: a key
/// that is held goes one step. Where the toolkit reads them from the X server one by one, it takes
/// them for presses of their own. An event filter of a window.
class HeldKeys final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject* window, QEvent* event) override;

private:
    int m_lifted = 0; ///< the key that was lifted last
    quint64 m_liftedAt = 0;
};

} // namespace varno

#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace varno {

/// A key as a `QKeyEvent` has it from the window system.
struct NativeKey {
    quint32 scanCode = 0;
    quint32 virtualKey = 0;
    int key = 0; ///< as the toolkit names it, a `Qt::Key`
};

/// The keyboard as the user has set it up. Keys are positions on it, told by their Carbon virtual
/// key codes. Main thread only.
class Keyboard : public QObject {
    Q_OBJECT

public:
    /// What the key alone types in the layout in use; empty if it types nothing or nobody knows.
    [[nodiscard]] virtual QString character(int carbonKeyCode) const = 0;

    /// Nothing for a modifier.
    [[nodiscard]] virtual std::optional<int> carbonKeyCode(const NativeKey& key) const = 0;

    /// The Carbon mask of the modifiers of a `QKeyEvent`.
    [[nodiscard]] virtual int carbonModifiers(Qt::KeyboardModifiers modifiers) const = 0;

Q_SIGNALS:
    /// Keys may type other characters now.
    void layoutChanged();
};

} // namespace varno

#pragma once

#include "demo/Stillness.h"

#include <QDir>

#include <functional>

namespace varno {

/// Takes pictures of a window, and of what stands over it, as the screen shows them.
class Camera {
public:
    /// `window` outlives the camera; `folder` exists.
    Camera(QWidget& window, const QDir& folder);

    /// To be called when the window is shown: waits until it is the active one, puts it into the
    /// corner and the pointer where it hovers over nothing.
    [[nodiscard]] bool prepare();

    /// Handles events until the condition holds; false after 20 seconds, or when stopped.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) const;

    /// Waits until nothing in the window moves.
    [[nodiscard]] bool settle();

    /// Keeps a picture as NAME.png.
    [[nodiscard]] bool take(const QString& name);

    [[nodiscard]] int pictureCount() const { return m_pictureCount; }

    /// What went wrong first; false, to be returned.
    bool giveUp(const QString& sentence);
    [[nodiscard]] const QString& error() const { return m_error; }

    /// Ends all waiting.
    void stop();

private:
    QWidget& m_window;
    QDir m_folder;
    Stillness m_stillness;
    QString m_error;
    int m_pictureCount = 0;
    bool m_stopped = false;
};

/// Whatever can be scrolled in it.
void scrollToEnd(const QWidget& window);

/// A key that is pressed and lifted, to whatever is the receiver.
void typeKey(QWidget& receiver, int key, Qt::KeyboardModifiers modifiers = {},
             const QString& text = {}, quint32 scanCode = 0);

/// A text, key by key.
void typeText(QWidget& receiver, const QString& text);

} // namespace varno

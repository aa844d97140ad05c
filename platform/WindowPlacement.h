#pragma once

#include <QRect>
#include <Qt>

class QWindow;

namespace varno {

struct UserAction;

/// Chooses where the windows of the application object are opened that is made while this lives:
/// where the program may place them, if there is such a place, which in a Wayland session is the X
/// server beside it. What the user's environment says of it stands, and is what programs that are
/// started later find there.
class DisplayChoice {
public:
    DisplayChoice();
    ~DisplayChoice();
    Q_DISABLE_COPY_MOVE(DisplayChoice)

    /// Whether there is a display; an application object would end the process if there is none.
    [[nodiscard]] bool hasDisplay() const { return m_hasDisplay; }

private:
    void choose(const char* platforms);

    bool m_hasDisplay = true;
    bool m_hasChosen = false; ///< by the environment
};

/// The work area of the screen that the user looks at: where the window with the keyboard is, or
/// else the pointer. Empty where there is no screen.
[[nodiscard]] QRect roomBeforeUser();

/// Whether panels have an edge and a close button of the system's own.
[[nodiscard]] bool hasSystemFrame();

/// Makes it a panel: above other windows, on every desktop, in no list of windows. Before every
/// showing, since the desktop forgets it when the window is hidden. The window has been created.
void prepareFloatingPanel(QWindow& window);

/// Gives a panel the keyboard on the user's behalf, and acknowledges the action. After every
/// showing as well as when it is shown already: the desktop is asked for what it grants only then.
void activateForUser(QWindow& window, const UserAction& action);

/// Tells the desktop that what the user did is answered, where it has no window to see by it: some
/// show a busy pointer until then. Once for each action.
void acknowledge(const UserAction& action);

/// Lets the pointer, whose left button is down, move the window, or its edges, until the button is
/// up.
void startMove(QWindow& window);
void startResize(QWindow& window, Qt::Edges edges);

/// Whether the left button of the pointer is down at this moment, which an event that comes late
/// does not tell: a window would stick to the pointer that starts to move it when it is up again.
[[nodiscard]] bool isPointerPressed();

} // namespace varno

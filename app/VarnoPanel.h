#pragma once

#include "app/ContentView.h"
#include "app/HeldKeys.h"
#include "platform/UserAction.h"

#include <optional>

namespace varno {

/// The one window: a floating panel without a frame, above all others and on every desktop. Closing
/// hides it. Dragging what is no content moves it, dragging its edges resizes it.
class VarnoPanel final : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize firstSize{860, 620};

    /// The view model and the key tasks outlive the panel. It is centred on the screen at first,
    /// and keeps the position and the size that the user gives it.
    VarnoPanel(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut);

    /// Shows it above all others and gives it the keyboard, since the user did something.
    void present(const UserAction& action);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void addFrame();
    void takeNote(AppViewModel::Changes what);
    void keepOnScreen();

    AppViewModel& m_viewModel;
    ContentView m_content;
    HeldKeys m_heldKeys;
    std::optional<QPoint> m_pressedAt; ///< on the screen
};

} // namespace varno

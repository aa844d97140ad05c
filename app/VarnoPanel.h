#pragma once

#include "app/ContentView.h"

namespace varno {

/// The one window: a floating panel without a frame, above all others and on every desktop. Closing
/// hides it. What nothing else in it wants of the mouse moves it; its edges resize it.
class VarnoPanel final : public QWidget {
    Q_OBJECT

public:
    /// The view model and the key tasks outlive the panel. It stands in the middle of the screen,
    /// and after that where and as large as the user leaves it.
    VarnoPanel(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut);

    /// Shows it above all others and gives it the keyboard. `time`: see `activateForUser`.
    void present(quint32 time);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void addResizeGrips();
    void takeNote(AppViewModel::Changes what);
    void keepOnScreen();

    AppViewModel& m_viewModel;
    ContentView m_content;
};

} // namespace varno

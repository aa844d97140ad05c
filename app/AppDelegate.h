#pragma once

#include "app/VarnoPanel.h"
#include "platform/StatusItem.h"

namespace varno {

/// Owns the controller, the panel and the icon in the status area for the life of the process.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// What it is given outlives it; the keychain lives as long as the process.
    AppDelegate(const AppViewModel::Dependencies& dependencies, const KeychainService& keychain,
                PanelShortcut shortcut);

    /// To be called once. The panel is made when it is shown first.
    void applicationDidFinishLaunching();

    /// Saves what there is to save.
    void prepareToQuit() { m_viewModel.prepareToQuit(); }

public slots:
    // `time` is the window system's time of what the user did, 0 if that is not known.
    void showWindow(quint32 time = 0);
    void toggleWindow(quint32 time = 0);

private:
    void setupStatusItem();

    AppViewModel m_viewModel;
    KeychainTasks m_keys;
    PanelShortcut m_shortcut;
    std::unique_ptr<VarnoPanel> m_panel; ///< from its first showing on
    std::unique_ptr<StatusItem> m_statusItem;
};

} // namespace varno

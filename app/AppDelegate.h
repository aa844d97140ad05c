#pragma once

#include "app/KeychainTasks.h"
#include "app/VarnoPanel.h"
#include "platform/StatusItem.h"

namespace varno {

/// Owns the controller, the panel and the icon in the status area for the life of the process, and
/// answers to that icon and to the shortcut that works everywhere.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    /// What it is given outlives it.
    AppDelegate(const AppViewModel::Dependencies& dependencies, const KeychainService& keychain);

    [[nodiscard]] AppViewModel& viewModel() { return m_viewModel; }

    /// To be called once. The panel is made when it is shown first; what takes its time then,
    /// loading fonts and the like, is done soon after the start.
    void applicationDidFinishLaunching();

    /// Saves what there is to save, and ends what asks for keys; the shortcut is dead from then on.
    void prepareToQuit();

public Q_SLOTS:
    void showWindow(const varno::UserAction& action = {});
    void toggleWindow(const varno::UserAction& action = {});

private:
    void setupStatusItem();
    void setupHotkey();
    void warmUp();

    AppViewModel m_viewModel;
    KeychainTasks m_keys;
    std::unique_ptr<VarnoPanel> m_panel; ///< from its first showing on
    std::unique_ptr<StatusItem> m_statusItem;
};

} // namespace varno

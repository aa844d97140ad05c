#pragma once

#include "app/PanelShortcut.h"
#include "core/AppViewModel.h"

#include <QWidget>

class QKeySequence;

namespace varno {

class EntryView;
class InAppSettingsView;
class KeychainTasks;
class ScreenTransition;
class SearchView;

/// The root of the panel: shows the one screen that is due, and answers the keys that work on all
/// of them. Its size is never that of its content.
class ContentView final : public QWidget {
    Q_OBJECT

public:
    /// The view model and the key tasks outlive the view.
    ContentView(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut,
                QWidget* parent = nullptr);

Q_SIGNALS:
    /// Escape, where there is nothing left to go back from.
    void hideRequested();

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void bindKeys();
    template <typename Action>
    void bind(const QList<QKeySequence>& keys, Action action);
    void escape();
    void goBack() { m_viewModel.goBack(); }
    void newSearch() { m_viewModel.newSearch(); }
    void toggleSettings() { m_viewModel.setShowingSettings(!m_viewModel.isShowingSettings()); }

    void takeNote(varno::AppViewModel::Changes what);
    [[nodiscard]] QWidget& dueScreen();
    void goTo(QWidget& next);

    AppViewModel& m_viewModel;
    KeychainTasks& m_keys;
    PanelShortcut m_shortcut;

    SearchView* m_search;
    EntryView* m_entry = nullptr;            ///< made when it is due first
    InAppSettingsView* m_settings = nullptr; ///< likewise
    QWidget* m_shown;
    ScreenTransition* m_transition;
};

} // namespace varno

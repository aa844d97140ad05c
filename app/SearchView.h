#pragma once

#include "app/KeychainTasks.h"
#include "app/RecentSearches.h"
#include "app/SearchBox.h"
#include "core/AppViewModel.h"
#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"
#include "kit/VerticalScrollArea.h"

namespace varno {

/// The screen with the search field, the latest searches, and what there is to know before the
/// first of them.
class SearchView final : public QWidget {
    Q_OBJECT

public:
    /// The view model and the key tasks outlive the view. `shortcutLabel` gives the keys that open
    /// the panel from anywhere, as they are shown, or nothing; it is asked when the screen appears.
    SearchView(AppViewModel& viewModel, KeychainTasks& keys, std::function<QString()> shortcutLabel,
               QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* page();
    void connectParts();

    void submit();
    void searchAgain(const QString& search);
    void takeNote(AppViewModel::Changes what);
    void showRecentSearches();
    [[nodiscard]] QString bottomBarText() const;
    void askForKey();

    AppViewModel& m_viewModel;
    KeychainTasks& m_keys;
    std::function<QString()> m_shortcutLabel;

    VerticalScrollArea m_scrollArea; ///< a low panel has no room for all of it
    ThemedText m_title;
    ThemedText m_subtitle;
    SearchBox m_box;
    QWidget m_warning;
    SymbolView m_warningSymbol;
    ThemedText m_warningText;
    RecentSearches m_recentSearches;
    ThemedText m_bottomBar;
    PlainButton m_settings;
};

} // namespace varno

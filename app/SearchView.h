#pragma once

#include "app/GlidingPlace.h"
#include "app/KeychainTasks.h"
#include "app/SearchBox.h"
#include "app/SearchList.h"
#include "core/AppViewModel.h"
#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"
#include "kit/VerticalScrollArea.h"

namespace varno {

/// The screen with the search field, a warning while there is no key, and the latest searches.
class SearchView final : public QWidget {
    Q_OBJECT

public:
    /// The view model and the key tasks outlive the view. `shortcutLabel` returns the display form
    /// of the shortcut that opens the panel, empty if there is none; it is called when the screen
    /// appears.
    SearchView(AppViewModel& viewModel, KeychainTasks& keys, std::function<QString()> shortcutLabel,
               QWidget* parent = nullptr,
               AnimationSetting& animationSetting = systemAnimationSetting());

protected:
    bool eventFilter(QObject* field, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* page();
    void connectParts();

    void submit();
    void searchAgain(const QString& search);
    void takeNote(AppViewModel::Changes what);
    void showList();
    [[nodiscard]] SearchList* shownList();
    bool walk(const QKeyEvent& key);
    [[nodiscard]] QString bottomBarText() const;
    void showHints();
    void askForKeys();
    void prepare(const QString& query);

    AppViewModel& m_viewModel;
    KeychainTasks& m_keys;
    std::function<QString()> m_shortcutLabel;
    bool m_hasKey = false; ///< for the chosen model
    QString m_chosen;      ///< the query that was not typed

    VerticalScrollArea m_scrollArea; ///< a low panel has no room for all of it
    ThemedText m_title;
    ThemedText m_subtitle;
    SearchBox m_box;
    GlidingPlace m_warningPlace;
    QWidget m_warning;
    SymbolView m_warningSymbol;
    ThemedText m_warningText;
    GlidingPlace m_listPlace;
    SearchList m_recentSearches;
    SearchList m_keptEntries;
    ThemedText m_bottomBar;
    PlainButton m_settings;
};

} // namespace varno

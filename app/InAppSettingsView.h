#pragma once

#include "app/APIKeyRow.h"
#include "app/FontSizeControl.h"
#include "app/ModelList.h"
#include "app/PanelShortcut.h"
#include "app/Switch.h"
#include "app/ThemeMenuButton.h"
#include "core/AppViewModel.h"
#include "kit/PlainButton.h"
#include "kit/Rule.h"
#include "kit/ThemedText.h"
#include "kit/VerticalScrollArea.h"

namespace varno {

/// The screen with the user's keys and preferences. Every choice takes effect at once.
class InAppSettingsView final : public QWidget {
    Q_OBJECT

public:
    /// The view model and the key tasks outlive the view.
    InAppSettingsView(AppViewModel& viewModel, KeychainTasks& keys, const PanelShortcut& shortcut,
                      QWidget* parent = nullptr);

    /// Resets the screen when it is left: drops every key that was typed or revealed.
    void reset();

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* sections();
    [[nodiscard]] QLayout* shortcutRow();
    [[nodiscard]] QLayout* appearanceRows();
    [[nodiscard]] QLayout* contentRows();
    [[nodiscard]] QLayout* aboutRows();
    void connectParts();
    void takeNote(AppViewModel::Changes what);
    void showPreferences();
    void showKeyStore();

    AppViewModel& m_viewModel;

    ThemedText m_title;
    PlainButton m_done;
    Rule m_rule;
    VerticalScrollArea m_scrollArea;

    APIKeyRow m_anthropicKey;
    GeminiAPIKeyRow m_geminiKey;
    ThemedText m_noKeyStore;
    ThemedText m_shortcutTitle;
    ThemedText m_shortcutHelp;
    QWidget* m_shortcutRecorder;
    QWidget* m_shortcutNotice;
    ThemedText m_fontSizeTitle;
    FontSizeControl m_fontSize;
    ThemedText m_themeTitle;
    ThemeMenuButton m_theme;
    ModelList m_models;
    ThemedText m_webSearchTitle;
    ThemedText m_webSearchHelp;
    Switch m_webSearch;
    ThemedText m_modelTitle;
    ThemedText m_model;
    ThemedText m_versionTitle;
    ThemedText m_version;
};

} // namespace varno

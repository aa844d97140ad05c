#pragma once

#include "app/KeyField.h"
#include "app/KeychainTasks.h"
#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"

#include <QLabel>
#include <QTimer>
#include <QUrl>

namespace varno {

/// What is different in one provider's row from another's.
struct APIKeyDescription {
    QString account;
    QString fieldName; ///< for a screen reader
    QString help;      ///< stands before the link
    QUrl page;         ///< where the provider makes keys
};

[[nodiscard]] APIKeyDescription anthropicKey(const KeychainService& keychain);
[[nodiscard]] APIKeyDescription geminiKey(const KeychainService& keychain);

/// Stores, shows and removes the key of one provider.
class APIKeyRow final : public QWidget {
    Q_OBJECT

public:
    /// The key tasks outlive the row.
    APIKeyRow(const APIKeyDescription& description, KeychainTasks& keys, QWidget* parent = nullptr);

    /// Asks the key store what it holds.
    void refresh();
    /// Drops what was typed or revealed, and what is about to be.
    void forget();

Q_SIGNALS:
    void presenceChanged(varno::KeyPresence presence);

protected:
    void changeEvent(QEvent* event) override;

private:
    void connectParts();
    void toggleRevealed();
    void reveal(const std::optional<QString>& storedKey);
    void save();
    void remove();
    void endChange(KeyPresence presence);
    void stopLoading();

    void setPresence(KeyPresence presence);
    void setChanging(bool changing);
    void showSaved();
    void showState();
    void takeColors();

    APIKeyDescription m_description;
    KeychainTasks& m_keys;
    KeyPresence m_presence = KeyPresence::absent;
    int m_presenceQuestion = 0; ///< the answer to an earlier one does not count
    bool m_changing = false;
    std::optional<std::stop_source> m_loading;
    QTimer m_savedTimer;

    KeyField m_key;
    PlainButton m_save;
    PlainButton m_remove;
    QWidget m_saved;
    SymbolView m_savedSymbol;
    ThemedText m_savedText;
    ThemedText m_stored;
    QLabel m_help;
};

} // namespace varno

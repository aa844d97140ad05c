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

/// Stores, shows and removes the key of Anthropic.
class APIKeyRow : public QWidget {
    Q_OBJECT

public:
    /// The key tasks outlive the row.
    explicit APIKeyRow(KeychainTasks& keys, QWidget* parent = nullptr);

    /// What the key store held when it was asked last.
    [[nodiscard]] KeyPresence presence() const { return m_presence; }
    /// Asks the key store what it holds.
    void refresh();
    /// Drops a key that was typed or revealed, or that is being loaded.
    void forget();

Q_SIGNALS:
    void presenceChanged();

protected:
    /// The differences between the rows of two providers.
    struct Provider {
        QString account;
        QString fieldName; ///< for a screen reader
        QString help;      ///< with "%1" in the place of the link
        QUrl keyPage;      ///< where the provider makes keys
    };
    APIKeyRow(const Provider& provider, KeychainTasks& keys, QWidget* parent);

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
    [[nodiscard]] QString helpText(const QColor& linkColor) const;

    Provider m_provider;
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

/// Stores, shows and removes the key of Google.
class GeminiAPIKeyRow final : public APIKeyRow {
    Q_OBJECT

public:
    explicit GeminiAPIKeyRow(KeychainTasks& keys, QWidget* parent = nullptr);
};

} // namespace varno

#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"

#include <QWidget>

namespace varno {

/// The panel that tells of a failure or of a page without text, with two buttons to go on.
class ErrorPanel final : public QWidget {
    Q_OBJECT

public:
    explicit ErrorPanel(QWidget* parent = nullptr);

    void showFailure(const QString& message);
    /// Shows a message without the warning symbol.
    void showNotice(const QString& message);

Q_SIGNALS:
    void tryAgain();
    void newSearch();

private:
    void setMessage(const QString& message);

    SymbolView m_symbol;
    ThemedText m_message;
    PlainButton m_tryAgain;
    PlainButton m_newSearch;
};

} // namespace varno

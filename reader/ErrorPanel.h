#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"

#include <QWidget>

namespace varno {

/// What went wrong or is missing, and the two ways on.
class ErrorPanel final : public QWidget {
    Q_OBJECT

public:
    explicit ErrorPanel(QWidget* parent = nullptr);

    void showFailure(const QString& message);
    /// Of what is no failure, and has no warning to it.
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

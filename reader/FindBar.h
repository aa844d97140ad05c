#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/TextField.h"
#include "kit/ThemedText.h"
#include "reader/Surface.h"

#include <QTimer>

namespace varno {

/// The bar with the find text, the counter of matches, and buttons that step through them.
class FindBar final : public Surface {
    Q_OBJECT

public:
    explicit FindBar(QWidget* parent = nullptr);

    void setFindText(const QString& text);
    /// Shows the current match, counted from 0, and the number of matches.
    void setMatches(int currentMatchIndex, int totalMatchCount);
    /// Focuses the field and selects its text.
    void takeFocus();

Q_SIGNALS:
    void findTextChanged(const QString& text);
    void currentMatchIndexChanged(int index);
    void closed();

private:
    void step(int matches);
    void showCounter();

    int m_currentMatchIndex = 0;
    int m_totalMatchCount = 0;

    SymbolView m_symbol;
    TextField m_field;
    ThemedText m_counter;
    QTimer m_announcement; ///< of the counter, once it rests
    PlainButton m_previous;
    PlainButton m_next;
    PlainButton m_close;
};

} // namespace varno

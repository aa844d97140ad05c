#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/ThemedText.h"
#include "reader/Surface.h"

#include <QLineEdit>

namespace varno {

/// The strip with the find text, the count of its matches, and the ways from one to the next.
class FindBar final : public Surface {
    Q_OBJECT

public:
    explicit FindBar(QWidget* parent = nullptr);

    void setFindText(const QString& text);
    /// Which match is the current one, from 0, of how many.
    void setMatches(int currentMatchIndex, int totalMatchCount);
    /// Gives the field the keyboard, its text selected.
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
    QLineEdit m_field;
    ThemedText m_counter;
    PlainButton m_previous;
    PlainButton m_next;
    PlainButton m_close;
};

} // namespace varno

#pragma once

#include "core/AppViewModel.h"

#include <QWidget>

class QLineEdit;
class QStackedLayout;

namespace varno {

class EntryView;

/// The entry screen in a plain window of its own. While no entry is shown, a field to search with
/// stands in its place.
class ReadingWindow final : public QWidget {
    Q_OBJECT

public:
    /// The view model outlives the window.
    explicit ReadingWindow(AppViewModel& viewModel);

    /// What the window's keys do, in lines for the terminal.
    static QString keys();

private:
    [[nodiscard]] QWidget* searchPage();
    void bindKeys();
    void bind(const QStringList& keys, const std::function<void()>& action);
    void changeFontSize(int step);
    void onChanged(AppViewModel::Changes what);
    void showScreen();

    AppViewModel& m_viewModel;
    EntryView* m_entry;
    QLineEdit* m_query;
    QStackedLayout* m_screens;
};

} // namespace varno

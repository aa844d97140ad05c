#pragma once

#include "core/AppViewModel.h"
#include "demo/StandInService.h"

#include <QTextStream>

namespace varno {

/// Shows the main job on the terminal: writes the entry for a query as it streams, opens a section,
/// goes back, and searches the same again.
class Demonstration final : public QObject {
    Q_OBJECT

public:
    /// All of these outlive the demonstration.
    Demonstration(AppViewModel& model, const StandInService& service, QTextStream& terminal);

    void start(const QString& query);

Q_SIGNALS:
    /// After the last step; with the message when the entry could not be written.
    void finished(const std::optional<QString>& error);

private:
    enum class Step { writingEntry, writingSection, done };

    void onChanged();
    void startPage();
    void showText();
    void finishPage();
    void showLists();
    void openFirstSection();
    void goBack();
    void searchAgain();

    AppViewModel& m_model;
    const StandInService& m_service;
    QTextStream& m_terminal;
    QString m_query;
    Step m_step = Step::writingEntry;
    qsizetype m_shown = -1; ///< characters on the terminal; negative before the page
};

} // namespace varno

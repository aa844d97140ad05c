#pragma once

#include "tests/Patience.h"
#include "tests/RunningProgram.h"

#include <QObject>

#include <memory>

namespace varno {

/// What tests of the program have in common: somebody at a desktop, and the program, which a test
/// starts. Whatever it was used for, it ends in good order and has not complained.
class ProgramFixture : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<XDesktop> m_desktop;
    std::unique_ptr<RunningProgram> m_program; ///< none when a test has seen how it ended

    void showPanel();
    void hidePanel();
    /// By keys, in a panel that has them; waits until the search is remembered.
    void search(XDesktop& desktop, const QByteArray& query);
    /// The screen of settings, by keys.
    void openSettings();
    /// Another program of the same kind in place of the one, which has not been started.
    void replaceProgram(XDesktop& desktop, const QString& busAddress = RunningProgram::usualBus());

protected Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
};

} // namespace varno

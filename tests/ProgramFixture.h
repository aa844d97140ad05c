#pragma once

#include "tests/RunningProgram.h"
#include "tests/Test.h"

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

    void showPanel()
    {
        m_desktop->typeShortcut();
        QTRY_VERIFY(m_program->hasKeyboard());
    }
    void hidePanel()
    {
        m_desktop->typeShortcut();
        QTRY_VERIFY(!m_program->isShown());
    }
    /// By keys, in a panel that has them; waits until the search is remembered.
    void search(XDesktop& desktop, const QByteArray& query)
    {
        desktop.type(query);
        desktop.type(pcKey::enter);
        QTRY_VERIFY(m_program->hasSearched(query));
    }
    /// By keys, too.
    void openSettings()
    {
        QVERIFY(m_program->activate());
        QTRY_VERIFY(m_program->hasKeyboard());
        m_desktop->typeWith(pcKey::control, pcKey::comma);
        QVERIFY(m_program->settles());
    }
    /// Before it starts: it finds no bus. Qt 6.8 leaks what it looks for a browser with then.
    void takeBusAway() const
    {
        m_program->set("DBUS_SESSION_BUS_ADDRESS", u"unix:path=/dev/null"_s);
        m_program->set("ASAN_OPTIONS", u"detect_leaks=0"_s);
    }
    /// By another one, in a new home, which has not been started.
    void replaceProgram(XDesktop& desktop, const QString& busAddress = RunningProgram::usualBus())
    {
        m_program = std::make_unique<RunningProgram>(desktop, busAddress);
    }

protected Q_SLOTS:
    void initTestCase()
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            QSKIP("There is no X server: Xvfb and openbox are not installed");
    }
    void init()
    {
        m_desktop = std::make_unique<XDesktop>();
        replaceProgram(*m_desktop);
    }
    void cleanup()
    {
        if (!m_program)
            return;
        const int status = m_program->end();
        QByteArray console = m_program->console();
        // The toolkit's own, of a window that is hidden before it has heard that it is shown.
        console.replace("qt.qpa.xcb: internal error:  void "
                        "QXcbWindow::setNetWmStateOnUnmappedWindow() called on mapped window\n",
                        "");
        m_program.reset();
        m_desktop.reset();
        QCOMPARE(console, QByteArray());
        QCOMPARE(status, 0);
    }
};

} // namespace varno

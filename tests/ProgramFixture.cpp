#include "tests/ProgramFixture.h"

namespace varno {

void ProgramFixture::showPanel()
{
    m_desktop->typeShortcut();
    QTRY_VERIFY(m_program->hasKeyboard());
}

void ProgramFixture::hidePanel()
{
    m_desktop->typeShortcut();
    QTRY_VERIFY(!m_program->isShown());
}

void ProgramFixture::search(XDesktop& desktop, const QByteArray& query)
{
    desktop.type(query);
    desktop.type(pcKey::enter);
    QTRY_VERIFY(m_program->hasSearched(query));
}

void ProgramFixture::openSettings()
{
    QVERIFY(m_program->activate());
    QTRY_VERIFY(m_program->hasKeyboard());
    m_desktop->typeWith(pcKey::control, pcKey::comma);
    QVERIFY(m_program->settles());
}

void ProgramFixture::replaceProgram(XDesktop& desktop, const QString& busAddress)
{
    m_program = std::make_unique<RunningProgram>(desktop, busAddress);
}

void ProgramFixture::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("There is no X server: Xvfb and openbox are not installed");
}

void ProgramFixture::init()
{
    m_desktop = std::make_unique<XDesktop>();
    replaceProgram(*m_desktop);
}

void ProgramFixture::cleanup()
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

} // namespace varno

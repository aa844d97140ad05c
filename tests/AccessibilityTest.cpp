#include "core/SessionCodec.h"
#include "platform/Files.h"
#include "tests/AccessibleDesktop.h"
#include "tests/ProgramFixture.h"
#include "tests/Test.h"

#include <QDateTime>

namespace {

constexpr auto text =
    "## Light\n\nIt has [a lamp](https://example.org) on top.\n\n- oil\n- gas\n\n"
    "| Year | Lamp |\n|---|---|\n| 1822 | lens |\n\n```\nx = 1\n```\n\n> Quoted"_L1;

/// An article of today.
Session opal()
{
    constexpr qint64 referenceEpoch = 978307200; // 2001-01-01 in seconds since 1970
    Page root;
    root.id = QUuid::createUuid();
    root.title = u"opal"_s;
    root.content = text;
    root.entryType = EntryType::full;
    root.tableOfContents = {u"Oil"_s, u"Gas"_s};
    root.seeAlso = {u"Fresnel"_s};
    Session session;
    session.id = QUuid::createUuid();
    session.rootQuery = root.title;
    session.push(root);
    Page section;
    section.id = QUuid::createUuid();
    section.title = u"Oil"_s;
    section.content = u"It burns."_s;
    section.parentPageId = root.id;
    section.parentSectionName = section.title;
    session.pages.insert(section.id, section);
    session.createdAt = static_cast<double>(QDateTime::currentSecsSinceEpoch() - referenceEpoch);
    return session;
}

} // namespace

/// What a screen reader gets of the program.
class AccessibilityTest : public ProgramFixture {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        ProgramFixture::initTestCase();
        if (AccessibleDesktop::launcher().isEmpty())
            QSKIP("There is no at-spi-bus-launcher: at-spi2-core is not installed");
    }

    void pageIsADocument()
    {
        const AccessibleDesktop desktop;
        QDir().mkpath(QFileInfo(m_program->historyPath()).path());
        QVERIFY(writeFileAtomically(m_program->historyPath(), encodeSessions({opal()})));
        // As if a screen reader listened: how that is said differs from one launcher to the next.
        m_program->set("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", u"1"_s);
        QVERIFY(m_program->start());
        showPanel();
        search(*m_desktop, "opal");
        QTRY_VERIFY(!desktop.programs().isEmpty());
        const QStringList lines = desktop.lines(desktop.programs().constFirst());
        qsizetype at = 0;
        for (const char* const line : {"frame: Varno",
                                       "push button: Search [New search (Ctrl+K)]",
                                       "push button: Find in entry (Ctrl+F)",
                                       "push button: Reload entry",
                                       "push button: Settings",
                                       "heading: Contents [Level 2]",
                                       "list: Contents",
                                       "list item: Oil",
                                       "list item: Gas",
                                       "document: opal",
                                       "heading: opal [Level 1]",
                                       "heading: Light [Level 2]",
                                       "paragraph: It has a lamp on top.",
                                       "link: a lamp",
                                       "list: ",
                                       "list item: • oil",
                                       "list item: • gas",
                                       "table: ",
                                       "column header: Year",
                                       "column header: Lamp",
                                       "cell: 1822",
                                       "cell: lens",
                                       "paragraph: x = 1 [Code]",
                                       "section: Quoted [Quotation]",
                                       "heading: See also [Level 2]",
                                       "list: See also",
                                       "link: Fresnel"}) {
            at = lines.indexOf(QString::fromUtf8(line), at);
            QVERIFY2(at++ >= 0, qPrintable(QString::fromUtf8(line) +
                                           u" is not in its place in\n"_s + lines.join(u'\n')));
        }

        const AccessibleDesktop::Object program = desktop.programs().constFirst();
        QVERIFY(desktop.press(u"list item: Oil"_s, program));
        QTRY_VERIFY(desktop.lines(program).contains(u"paragraph: It burns."_s));
        QVERIFY(desktop.lines(program).contains(u"list item: Oil [On show] (selected)"_s));
        m_desktop->typeWith(pcKey::control, pcKey::f);
        QVERIFY(m_program->settles());
        m_desktop->type("burn");
        QTRY_VERIFY(desktop.lines(program).contains(u"notification: 1 of 1"_s));
    }
};

VARNO_TEST(QCoreApplication, AccessibilityTest)
#include "AccessibilityTest.moc"

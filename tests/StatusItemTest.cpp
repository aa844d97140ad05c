#include "tests/ProgramFixture.h"
#include "tests/StatusHost.h"
#include "tests/Test.h"

#include <QDBusArgument>
#include <QVersionNumber>

namespace {

/// The sides of an item's images.
QList<int> sides(const QVariant& value)
{
    QList<int> sides;
    const auto argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        int height = 0;
        QByteArray pixels;
        argument.beginStructure();
        argument >> sides.emplaceBack() >> height >> pixels;
        argument.endStructure();
    }
    argument.endArray();
    return sides;
}

/// The status area of an older desktop, in a corner of the screen: whoever owns a selection of the
/// X server takes the windows of programs into its own.
class OlderStatusArea {
public:
    explicit OlderStatusArea(XDesktop& desktop)
        : m_desktop(desktop)
        , m_connection(desktop.connection())
        , m_window(xcb_generate_id(m_connection))
    {
        constexpr quint16 side = 40;
        constexpr quint32 withoutManager = 1;
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_desktop.root(), 0, 0,
                          side, side, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT, &withoutManager);
        xcb_map_window(m_connection, m_window);
        const xcb_atom_t selection = m_desktop.atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(m_connection, m_window, selection, XCB_CURRENT_TIME);
        m_desktop.send(m_desktop.root(), "MANAGER", {XCB_CURRENT_TIME, selection, m_window},
                       XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }

    /// Takes in the windows that have asked for it since; how many there are in it.
    int icons()
    {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE ||
                message->type != m_desktop.atom("_NET_SYSTEM_TRAY_OPCODE"))
                continue;
            const xcb_window_t icon = message->data.data32[2];
            xcb_reparent_window(m_connection, icon, m_window, 0, 0);
            xcb_map_window(m_connection, icon);
        }
        const XcbReply<xcb_query_tree_reply_t> inside(
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_window), nullptr));
        return inside ? inside->children_len : 0;
    }

private:
    XDesktop& m_desktop;
    xcb_connection_t* m_connection;
    xcb_window_t m_window;
};

} // namespace

/// The program's icon in the status area of a desktop.
class StatusItemTest : public ProgramFixture {
    Q_OBJECT

private:
    /// The host has got one item, and a click on it shows and hides the panel.
    void verifyItem(const StatusHost& host)
    {
        QVERIFY(host.isRegistered());
        QTRY_COMPARE(host.items().size(), 1);
        QVERIFY(m_program->settles());
        QCOMPARE(host.items().size(), 1);
        QVERIFY(host.activate(host.items().constFirst()));
        QTRY_VERIFY(m_program->hasKeyboard());
        QVERIFY(host.activate(host.items().constFirst()));
        QTRY_VERIFY(!m_program->isShown());
    }

private Q_SLOTS:
    void saysWhatItIs()
    {
        const StatusHost host;
        QVERIFY(m_program->start());
        const xcb_window_t other = m_desktop->openWindow();
        QVERIFY(other != XCB_NONE);
        verifyItem(host);
        QTRY_COMPARE(m_desktop->focus(), other);
        const QVariantMap item = host.properties(host.items().constFirst());
        QCOMPARE(item.value(u"Id"_s), u"Varno"_s);
        QCOMPARE(item.value(u"Title"_s), u"Varno"_s);
        QCOMPARE(item.value(u"Status"_s), u"Active"_s);
        QVERIFY(sides(item.value(u"IconPixmap"_s)).contains(22)); // of most status areas
    }

    void hostComesLaterAndComesBack()
    {
        QVERIFY(m_program->start());
        for (int time = 0; time < 3; ++time) {
            const StatusHost host;
            verifyItem(host);
        }
    }

    void watcherMayLieOrComeBeforeItsHost()
    {
        using Answer = StatusHost::Answer;
        OlderStatusArea area(*m_desktop);
        for (const auto& [first, icons] : {std::pair{Answer::no, 1}, std::pair{Answer::failure, 1},
                                           std::pair{Answer::none, 0}}) {
            const InRow row(static_cast<int>(first));
            replaceProgram(*m_desktop);
            StatusHost host(first);
            QVERIFY(m_program->start());
            const bool isOld = QVersionNumber::fromString(qVersion()) < QVersionNumber(6, 8);
            QTRY_COMPARE(area.icons(), isOld ? icons : 0); // newer ones take a watcher for a host
            for (int time = 0; time < 2; ++time) {
                host.setAnswer(Answer::yes);
                QTRY_COMPARE(area.icons(), 0);
                verifyItem(host);
                host.setAnswer(Answer::no);
                QTRY_COMPARE(area.icons(), isOld ? 1 : 0);
            }
        }
    }

    void everyClickIsTheSame()
    {
        for (const bool isGnome : {false, true}) {
            replaceProgram(*m_desktop);
            StatusHost host;
            if (isGnome)
                host.becomeGnomeShell();
            QVERIFY(m_program->start());
            QTRY_COMPARE(host.items().size(), 1);
            const QString item = host.items().constFirst();
            bool isShown = false;
            for (const QString& click :
                 {u"Activate"_s, u"SecondaryActivate"_s, u"ContextMenu"_s, u"Activate"_s}) {
                QCOMPARE(host.activate(item, click), !isGnome); // which wants an error
                isShown = !isShown;
                QTRY_COMPARE(m_program->isShown(), isShown);
            }
            QCOMPARE(host.properties(item).contains(u"Menu"_s), isGnome); // which wants one
        }
    }

    void olderStatusAreaComesLater()
    {
        QVERIFY(m_program->start());
        OlderStatusArea area(*m_desktop);
        QTRY_COMPARE(area.icons(), 1);
        QVERIFY(m_program->settles());
        m_desktop->doubleClick({8, 8}); // the first of the two is enough
        QTRY_VERIFY(m_program->hasKeyboard());
        QVERIFY(m_program->settles());
        QVERIFY(m_program->isShown());
        QCOMPARE(area.icons(), 1);
        replaceProgram(*m_desktop);
        QTRY_COMPARE(area.icons(), 0);
        takeBusAway();
        m_program->launch();
        QTRY_COMPARE(area.icons(), 1);
    }
};

VARNO_TEST(QCoreApplication, StatusItemTest)
#include "StatusItemTest.moc"

#include "tests/RunningProgram.h"
#include "tests/StatusHost.h"

#include <optional>

using namespace varno;
using namespace Qt::StringLiterals;

namespace {

/// An image of a status item: 32 bits for each pixel, alpha first, in the order of the network.
struct ItemImage {
    int width = 0;
    int height = 0;
    QByteArray pixels;

    [[nodiscard]] bool isVisible() const
    {
        if (width <= 0 || height <= 0 || pixels.size() != qsizetype(4) * width * height)
            return false;
        for (qsizetype alpha = 0; alpha < pixels.size(); alpha += 4)
            if (pixels.at(alpha) != 0)
                return true;
        return false;
    }
};

QList<ItemImage> itemImages(const QVariant& value)
{
    QList<ItemImage> images;
    const auto argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        ItemImage image;
        argument.beginStructure();
        argument >> image.width >> image.height >> image.pixels;
        argument.endStructure();
        images.append(image);
    }
    argument.endArray();
    return images;
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
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_desktop.root();
        event.type = m_desktop.atom("MANAGER");
        event.data.data32[1] = selection;
        event.data.data32[2] = m_window;
        xcb_send_event(m_connection, 0, m_desktop.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(m_connection);
    }

    /// Takes in the windows that have asked for it since; how many there are.
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
            xcb_flush(m_connection);
            ++m_icons;
        }
        return m_icons;
    }

    void click() { m_desktop.click({8, 8}); }

private:
    XDesktop& m_desktop;
    xcb_connection_t* m_connection;
    xcb_window_t m_window;
    int m_icons = 0;
};

} // namespace

/// The program's icon in the status area of a desktop.
class StatusItemTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<XDesktop> m_desktop;
    std::unique_ptr<StatusHost> m_host;
    std::unique_ptr<RunningProgram> m_program;

    void startHost()
    {
        m_host = std::make_unique<StatusHost>();
        QVERIFY(m_host->isRegistered());
    }
    /// The host has got one item, which works.
    void verifyItem()
    {
        QTRY_COMPARE(m_host->items().size(), 1);
        QVERIFY(m_program->settles());
        QCOMPARE(m_host->items().size(), 1);
        QVERIFY(m_host->activate(m_host->items().constFirst()));
        QTRY_VERIFY(m_program->hasKeyboard());
        QVERIFY(m_host->activate(m_host->items().constFirst()));
        QTRY_VERIFY(!m_program->isShown());
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void saysWhatItIs();
    void clickToggles();
    void withoutAHost();
    void hostComesLater();
    void hostComesBack();
    void olderStatusArea_data();
    void olderStatusArea();
};

void StatusItemTest::initTestCase()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        QSKIP("There is no X server: Xvfb and openbox are not installed");
}

void StatusItemTest::init()
{
    m_desktop = std::make_unique<XDesktop>();
    m_program = std::make_unique<RunningProgram>(*m_desktop);
}

void StatusItemTest::cleanup()
{
    if (!m_program)
        return;
    const int status = m_program->end();
    const QByteArray console = m_program->console();
    m_program.reset();
    m_host.reset();
    m_desktop.reset();
    QCOMPARE(console, QByteArray());
    QCOMPARE(status, 0);
}

void StatusItemTest::saysWhatItIs()
{
    startHost();
    QVERIFY(m_program->start());
    QTRY_COMPARE(m_host->items().size(), 1);
    const QVariantMap item = m_host->properties(m_host->items().constFirst());
    QCOMPARE(item.value(u"Id"_s), u"Varno"_s);
    QCOMPARE(item.value(u"Title"_s), u"Varno"_s);
    QCOMPARE(item.value(u"Status"_s), u"Active"_s);
    QList<int> sides;
    for (const ItemImage& image : itemImages(item.value(u"IconPixmap"_s))) {
        QVERIFY(image.isVisible());
        QCOMPARE(image.width, image.height);
        sides.append(image.width);
    }
    QVERIFY(sides.contains(22)); // of most status areas
}

void StatusItemTest::clickToggles()
{
    startHost();
    QVERIFY(m_program->start());
    const xcb_window_t other = m_desktop->openWindow();
    QVERIFY(other != XCB_NONE);
    verifyItem();
    QTRY_COMPARE(m_desktop->focus(), other);
    verifyItem();
}

void StatusItemTest::withoutAHost()
{
    QVERIFY(m_program->start());
    m_desktop->typeShortcut();
    QTRY_VERIFY(m_program->hasKeyboard());
    m_desktop->typeShortcut();
    QTRY_VERIFY(!m_program->isShown());
}

void StatusItemTest::hostComesLater()
{
    QVERIFY(m_program->start());
    startHost();
    verifyItem();
}

void StatusItemTest::hostComesBack()
{
    startHost();
    QVERIFY(m_program->start());
    verifyItem();
    for (int time = 0; time < 2; ++time) {
        m_host.reset();
        QVERIFY(m_program->settles());
        QVERIFY(m_program->isRunning());
        startHost();
        verifyItem();
    }
}

void StatusItemTest::olderStatusArea_data()
{
    QTest::addColumn<bool>("later"); // than the program
    QTest::newRow("at the start") << false;
    QTest::newRow("later") << true;
}

void StatusItemTest::olderStatusArea()
{
    QFETCH(const bool, later);
    std::optional<OlderStatusArea> area;
    if (!later)
        area.emplace(*m_desktop);
    QVERIFY(m_program->start());
    if (later)
        area.emplace(*m_desktop);
    QTRY_COMPARE(area->icons(), 1);
    QVERIFY(m_program->settles());
    area->click();
    area->click(); // so soon it is a double click, of which the first was enough
    QTRY_VERIFY(m_program->hasKeyboard());
    QVERIFY(m_program->settles());
    QVERIFY(m_program->isShown());
    QCOMPARE(area->icons(), 1);
}

VARNO_TEST(QCoreApplication, StatusItemTest)
#include "StatusItemTest.moc"

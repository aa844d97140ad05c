#include "platform/linux/XcbConnection.h"

#include <QPointer>

#include <chrono>
#include <csignal>

// NOLINTNEXTLINE(clang-diagnostic-keyword-macro): a member has this name in the header
#define explicit explicitActions
#include <xcb/xkb.h>
#undef explicit

namespace varno {
namespace {

/// A new keymap comes as a row of changes.
constexpr std::chrono::milliseconds keymapDelay(60);

/// The bit that events sent by another client have set.
constexpr quint8 sentByClient = 0x80;

/// Writing to a server that has gone would end the process.
void ignoreBrokenPipes()
{
    struct sigaction current = {};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): a member of a C union
    if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

} // namespace

XcbConnection::XcbConnection()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (!isOpen())
        return;
    ignoreBrokenPipes();
    m_keymapTimer.setSingleShot(true);
    m_keymapTimer.setInterval(keymapDelay);
    connect(&m_keymapTimer, &QTimer::timeout, this, &XcbConnection::keymapChanged);
    m_notifier =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(get()), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &XcbConnection::read);
    setUpKeyboardExtension();
    readLater();
}

XcbConnection::~XcbConnection()
{
    m_notifier.reset(); // before the connection closes what it watches
}

bool XcbConnection::isOpen() const
{
    return xcb_connection_has_error(get()) == 0;
}

void XcbConnection::setUpKeyboardExtension()
{
    const XcbReply<xcb_xkb_use_extension_reply_t> use(xcb_xkb_use_extension_reply(
        get(), xcb_xkb_use_extension(get(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
        nullptr));
    if (!use || use->supported == 0)
        return;
    m_keyboardEvent = xcb_get_extension_data(get(), &xcb_xkb_id)->first_event;

    // Without this a key that is held down is released and pressed again and again.
    constexpr quint32 autoRepeat = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const XcbReply<xcb_xkb_per_client_flags_reply_t> flags(xcb_xkb_per_client_flags_reply(
        get(),
        xcb_xkb_per_client_flags(get(), XCB_XKB_ID_USE_CORE_KBD, autoRepeat, autoRepeat, 0, 0, 0),
        nullptr));

    constexpr quint16 wholeEvents =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr quint16 mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                 XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                 XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details = {};
    details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(get(), XCB_XKB_ID_USE_CORE_KBD,
                              wholeEvents | XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, wholeEvents,
                              mapParts, mapParts, &details);
    xcb_flush(get());
}

void XcbConnection::readLater()
{
    QMetaObject::invokeMethod(this, &XcbConnection::read, Qt::QueuedConnection);
}

bool XcbConnection::check(xcb_void_cookie_t request)
{
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(get(), request));
    readLater();
    return !error && isOpen();
}

void XcbConnection::read()
{
    const QPointer<XcbConnection> alive(this);
    while (alive) {
        const XcbReply<xcb_generic_event_t> event(xcb_poll_for_event(get()));
        if (!event)
            break;
        announce(*event);
    }
    if (alive && !isOpen() && m_notifier)
        m_notifier->setEnabled(false); // the end of a file is readable for ever
}

void XcbConnection::announce(const xcb_generic_event_t& event)
{
    const auto type = static_cast<quint8>(event.response_type & ~sentByClient);
    if (type == XCB_KEY_PRESS) {
        const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
        Q_EMIT keyPressed(press.detail, press.state, press.time);
    } else if (type == XCB_KEY_RELEASE) {
        const auto& release = reinterpret_cast<const xcb_key_release_event_t&>(event);
        Q_EMIT keyReleased(release.detail, release.time);
    } else if (type == XCB_MAPPING_NOTIFY) { // from a server without the extension
        m_keymapTimer.start();
    } else if (m_keyboardEvent != 0 && type == m_keyboardEvent) {
        announceKeyboardEvent(event);
    }
}

void XcbConnection::announceKeyboardEvent(const xcb_generic_event_t& event)
{
    const quint8 kind = reinterpret_cast<const xcb_xkb_map_notify_event_t&>(event).xkbType;
    if (kind == XCB_XKB_STATE_NOTIFY)
        Q_EMIT layoutSwitched();
    else if (kind == XCB_XKB_MAP_NOTIFY || kind == XCB_XKB_NEW_KEYBOARD_NOTIFY)
        m_keymapTimer.start();
}

} // namespace varno

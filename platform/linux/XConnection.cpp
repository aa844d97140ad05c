#include "platform/linux/XConnection.h"

#include "platform/linux/XcbReply.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QHash>

namespace varno {

xcb_connection_t* xConnection()
{
    if (!qGuiApp)
        return nullptr;
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t xAtom(const char* name)
{
    static QHash<QByteArray, xcb_atom_t> known;
    const QByteArray key(name);
    if (const auto found = known.constFind(key); found != known.constEnd())
        return *found;
    const auto request = xcb_intern_atom(xConnection(), 0, quint16(key.size()), name);
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(xConnection(), request, nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    known.insert(key, atom);
    return atom;
}

} // namespace varno

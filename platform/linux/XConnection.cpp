#include "platform/linux/XConnection.h"

#include "platform/linux/XcbReply.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QHash>

namespace varno {
namespace {

QHash<QByteArray, xcb_atom_t>& knownAtoms()
{
    static QHash<QByteArray, xcb_atom_t> atoms;
    return atoms;
}

} // namespace

xcb_connection_t* xConnection()
{
    if (!qGuiApp)
        return nullptr;
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t xAtom(const char* name)
{
    fetchXAtoms({name});
    return knownAtoms().value(name, XCB_ATOM_NONE);
}

void fetchXAtoms(std::initializer_list<const char*> names)
{
    QHash<QByteArray, xcb_intern_atom_cookie_t> requests;
    for (const QByteArray name : names)
        if (!knownAtoms().contains(name))
            requests.insert(name, xcb_intern_atom(xConnection(), 0, quint16(name.size()), name));
    for (auto request = requests.cbegin(); request != requests.cend(); ++request) {
        const XcbReply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(xConnection(), request.value(), nullptr));
        knownAtoms().insert(request.key(), reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
}

} // namespace varno

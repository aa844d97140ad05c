#include "platform/linux/SecretConversation.h"

#include "platform/Resources.h"
#include "platform/linux/SecretQuestion.h"

#include <utility>

namespace varno {

SecretConversation::SecretConversation(std::stop_token stop)
    : m_context(hasResources() ? g_main_context_new() : nullptr) // GLib would end the process
    , m_cancelOnStop(std::move(stop), [this] { cancel(); })
{
    if (!m_context)
        return;
    // The whole process shares one connection, whose end must not be told in a context that has
    // gone by then: GLib would keep the dead connection for ever.
    m_bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, m_opening.get(), IgnoredError()));
    g_main_context_push_thread_default(m_context.get());
    if (!m_bus)
        return;
    // GLib would end the process when the session bus goes away.
    g_dbus_connection_set_exit_on_close(m_bus.get(), FALSE);
    m_service.reset(secret_service_open_sync(secretServiceType(), nullptr, SECRET_SERVICE_NONE,
                                             m_opening.get(), IgnoredError()));
}

SecretConversation::~SecretConversation()
{
    if (!m_context)
        return;
    m_service.reset();
    m_bus.reset();
    while (g_main_context_iteration(m_context.get(), FALSE)) {
    }
    g_main_context_pop_thread_default(m_context.get());
}

/// Any thread. A running call is told in our own, the only one that drives it to its end.
void SecretConversation::cancel()
{
    if (!m_context)
        return;
    g_cancellable_cancel(m_opening.get());
    g_main_context_invoke_full(
        m_context.get(), G_PRIORITY_DEFAULT,
        [](gpointer calling) -> gboolean {
            g_cancellable_cancel(G_CANCELLABLE(calling));
            return G_SOURCE_REMOVE;
        },
        g_object_ref(m_calling.get()), g_object_unref);
}

} // namespace varno

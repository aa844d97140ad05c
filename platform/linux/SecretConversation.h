#pragma once

#include "platform/linux/GLibOwned.h"

#include <functional>
#include <stop_token>

namespace varno {

/// One conversation with the key ring, in a main context of its own: nothing of it runs in other
/// threads, and none of them holds it up.
class SecretConversation {
public:
    explicit SecretConversation(std::stop_token stop = {});
    ~SecretConversation();
    Q_DISABLE_COPY_MOVE(SecretConversation)

    /// Nothing if the bus cannot be reached, or there are no resources to do so.
    [[nodiscard]] SecretService* service() const { return m_service.get(); }

    /// The result of an asynchronous call, which `start` makes with what it is given.
    template <typename Start>
    Owned<GAsyncResult> await(const Start& start)
    {
        GAsyncResult* result = nullptr;
        const GAsyncReadyCallback finish = [](GObject*, GAsyncResult* arrived, gpointer user) {
            *static_cast<GAsyncResult**>(user) = G_ASYNC_RESULT(g_object_ref(arrived));
        };
        start(m_calling.get(), finish, &result);
        while (!result)
            g_main_context_iteration(m_context.get(), TRUE);
        return Owned<GAsyncResult>(result);
    }

private:
    void cancel();

    Owned<GMainContext> m_context;
    Owned<GCancellable> m_opening{g_cancellable_new()};
    Owned<GCancellable> m_calling{g_cancellable_new()};
    Owned<GDBusConnection> m_bus;
    Owned<SecretService> m_service;
    std::stop_callback<std::function<void()>> m_cancelOnStop;
};

} // namespace varno

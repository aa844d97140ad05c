#include "platform/linux/SecretQuestion.h"

#include "platform/linux/GLibOwned.h"

#include <memory>
#include <utility>

namespace varno {
namespace {

/// A question of the key ring to the user. It belongs to the task that waits for it.
class SecretQuestion {
public:
    /// These two stand in for the functions of SecretServiceClass.
    static void promptAsync(SecretService* service, SecretPrompt* prompt, const GVariantType* type,
                            GCancellable* cancellable, GAsyncReadyCallback callback, gpointer user)
    {
        const Owned<GCancellable> own(cancellable ? nullptr : g_cancellable_new());
        GTask* task = g_task_new(service, cancellable ? cancellable : own.get(), callback, user);
        auto* question = new SecretQuestion(prompt, type, task);
        g_task_set_task_data(task, question,
                             [](gpointer data) { delete static_cast<SecretQuestion*>(data); });
        question->ask();
    }

    static GVariant* promptFinish(SecretService*, GAsyncResult* result, GError** error)
    {
        return static_cast<GVariant*>(g_task_propagate_pointer(G_TASK(result), error));
    }

private:
    using Text = std::unique_ptr<gchar, decltype(&g_free)>;
    using Type = std::unique_ptr<GVariantType, decltype(&g_variant_type_free)>;

    SecretQuestion(SecretPrompt* prompt, const GVariantType* type, GTask* task)
        : m_task(task)
        , m_prompt(G_DBUS_PROXY(g_object_ref(prompt)))
        , m_type(g_variant_type_copy(type), g_variant_type_free)
        , m_asked(owner())
    {
    }

    void ask()
    {
        m_signal = g_signal_connect(m_prompt.get(), "g-signal", G_CALLBACK(&onSignal), this);
        m_cancelled = g_signal_connect(g_task_get_cancellable(m_task), "cancelled",
                                       G_CALLBACK(&onCancelled), this);
        g_source_set_callback(m_everySecond.get(), &onSecond, this, nullptr);
        g_source_attach(m_everySecond.get(), g_main_context_get_thread_default());
        g_dbus_proxy_call(m_prompt.get(), "Prompt", g_variant_new("(s)", ""),
                          G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, m_calling.get(), &onAsked,
                          g_object_ref(m_task));
        if (g_cancellable_is_cancelled(g_task_get_cancellable(m_task)))
            finish();
    }

    void finish(Owned<GVariant> answer = {})
    {
        if (m_over)
            return;
        m_over = true;
        g_signal_handler_disconnect(m_prompt.get(), m_signal);
        g_signal_handler_disconnect(g_task_get_cancellable(m_task), m_cancelled);
        m_everySecond.reset();
        g_cancellable_cancel(m_calling.get());
        const Owned<GTask> task(m_task); // this goes with it
        if (answer && g_variant_is_of_type(answer.get(), m_type.get()))
            g_task_return_pointer(task.get(), answer.release(), [](gpointer value) {
                g_variant_unref(static_cast<GVariant*>(value));
            });
        else // never nothing at all: libsecret would read it
            g_task_return_new_error(task.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED, "No answer");
    }

    [[nodiscard]] Text owner() const
    {
        return {g_dbus_proxy_get_name_owner(m_prompt.get()), g_free};
    }

    static void onAsked(GObject* prompt, GAsyncResult* result, gpointer user)
    {
        const Owned<GTask> task(G_TASK(user));
        const Owned<GVariant> reply(
            g_dbus_proxy_call_finish(G_DBUS_PROXY(prompt), result, IgnoredError()));
        if (!reply)
            static_cast<SecretQuestion*>(g_task_get_task_data(task.get()))->finish();
    }

    static void onSignal(GDBusProxy*, const gchar*, const gchar* name, GVariant* arguments,
                         gpointer user)
    {
        if (g_strcmp0(name, "Completed") != 0 ||
            !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(bv)")))
            return;
        gboolean dismissed = FALSE;
        GVariant* answer = nullptr;
        g_variant_get(arguments, "(bv)", &dismissed, &answer);
        Owned<GVariant> owned(answer);
        if (dismissed)
            owned.reset();
        static_cast<SecretQuestion*>(user)->finish(std::move(owned));
    }

    /// Leaves what stands on the screen to the user: gnome-keyring (42) may crash when it is told
    /// to dismiss a question, and take what else was unlocked with it.
    static void onCancelled(GCancellable*, gpointer user)
    {
        static_cast<SecretQuestion*>(user)->finish();
    }

    /// Of the end of a connection, GLib tells the main thread only.
    static gboolean onSecond(gpointer user)
    {
        auto* self = static_cast<SecretQuestion*>(user);
        if (g_strcmp0(self->owner().get(), self->m_asked.get()) != 0 ||
            g_dbus_connection_is_closed(g_dbus_proxy_get_connection(self->m_prompt.get())))
            self->finish();
        return G_SOURCE_CONTINUE;
    }

    GTask* m_task;
    Owned<GDBusProxy> m_prompt;
    Type m_type;
    Text m_asked; ///< the key ring that asks, by its unique name on the bus
    Owned<GCancellable> m_calling{g_cancellable_new()};
    Owned<GSource> m_everySecond{g_timeout_source_new_seconds(1)};
    gulong m_signal = 0;
    gulong m_cancelled = 0;
    bool m_over = false;
};

} // namespace

GType secretServiceType()
{
    static const GType type = g_type_register_static_simple(
        SECRET_TYPE_SERVICE, "VarnoSecretService", sizeof(SecretServiceClass),
        [](gpointer base, gpointer) {
            auto* service = SECRET_SERVICE_CLASS(base);
            service->prompt_async = &SecretQuestion::promptAsync;
            service->prompt_finish = &SecretQuestion::promptFinish;
        },
        sizeof(SecretService), nullptr, static_cast<GTypeFlags>(0));
    return type;
}

} // namespace varno

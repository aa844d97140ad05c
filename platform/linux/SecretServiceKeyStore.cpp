// GLib first: it has members called `signals`.
#include <libsecret/secret.h>

#include "platform/linux/SecretServiceKeyStore.h"

#include <memory>

namespace varno {
namespace {

struct Release {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
    void operator()(GList* items) const { g_list_free_full(items, g_object_unref); }
    template <typename Object>
    void operator()(Object* object) const
    {
        g_object_unref(object);
    }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

/// Swallows the error of a call: here failures are silent.
class IgnoredError {
public:
    IgnoredError() = default;
    ~IgnoredError() { g_clear_error(&m_error); }
    Q_DISABLE_COPY_MOVE(IgnoredError)

    operator GError**() { return &m_error; } // NOLINT(google-explicit-constructor)

private:
    GError* m_error = nullptr;
};

const SecretSchema& schema()
{
    static const SecretSchema value = {
        "com.kelbrin.varno",
        SECRET_SCHEMA_NONE,
        {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
         {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
         {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
        0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    return value;
}

Owned<GHashTable> attributes(const KeyName& name)
{
    return Owned<GHashTable>(secret_attributes_build(
        &schema(), "service", name.service.toUtf8().constData(), "account",
        name.account.toUtf8().constData(), nullptr));
}

Owned<SecretService> openService(SecretServiceFlags flags, GCancellable* cancellable = nullptr)
{
    // GLib would end the process when the session bus goes away.
    const Owned<GDBusConnection> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, IgnoredError()));
    if (!bus)
        return nullptr;
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return Owned<SecretService>(secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, flags,
                                                         cancellable, IgnoredError()));
}

} // namespace

void SecretServiceKeyStore::add(const KeyName& name, const QByteArray& secret)
{
    const Owned<SecretService> service = openService(SECRET_SERVICE_OPEN_SESSION);
    if (!service)
        return;
    const Owned<SecretValue> value(
        secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = "Varno (" + name.account.toUtf8() + ")";
    secret_service_store_sync(service.get(), &schema(), attributes(name).get(),
                              SECRET_COLLECTION_DEFAULT, label.constData(), value.get(), nullptr,
                              IgnoredError());
}

void SecretServiceKeyStore::remove(const KeyName& name)
{
    if (const Owned<SecretService> service = openService(SECRET_SERVICE_NONE))
        secret_service_clear_sync(service.get(), &schema(), attributes(name).get(), nullptr,
                                  IgnoredError());
}

std::optional<QByteArray> SecretServiceKeyStore::find(const KeyName& name,
                                                      std::stop_token stop) const
{
    const Owned<GCancellable> cancellable(g_cancellable_new());
    const std::stop_callback cancel(stop, [&] { g_cancellable_cancel(cancellable.get()); });

    const Owned<SecretService> service =
        openService(SECRET_SERVICE_OPEN_SESSION, cancellable.get());
    if (!service)
        return std::nullopt;
    const Owned<SecretValue> value(
        secret_service_lookup_sync(service.get(), &schema(), attributes(name).get(),
                                   cancellable.get(), IgnoredError()));
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const gchar* bytes = secret_value_get(value.get(), &length);
    return QByteArray(bytes, static_cast<qsizetype>(length));
}

KeyPresence SecretServiceKeyStore::presence(const KeyName& name) const
{
    const Owned<SecretService> service = openService(SECRET_SERVICE_NONE);
    if (!service)
        return KeyPresence::unreachable;
    GError* error = nullptr;
    const Owned<GList> items(secret_service_search_sync(service.get(), &schema(),
                                                        attributes(name).get(), SECRET_SEARCH_NONE,
                                                        nullptr, &error));
    if (error) {
        g_error_free(error);
        return KeyPresence::unreachable;
    }
    return items ? KeyPresence::present : KeyPresence::absent;
}

} // namespace varno

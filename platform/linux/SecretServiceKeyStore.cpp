#include "platform/linux/SecretServiceKeyStore.h"

#include "platform/linux/SecretConversation.h"

#include <utility>

namespace varno {
namespace {

const SecretSchema& schema()
{
    static const SecretSchema value = [] {
        SecretSchema made = {};
        made.name = "com.kelbrin.varno";
        made.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return value;
}

Owned<GHashTable> attributes(const KeyName& name)
{
    return Owned<GHashTable>(secret_attributes_build(&schema(), "service",
                                                     name.service.toUtf8().constData(), "account",
                                                     name.account.toUtf8().constData(), nullptr));
}

} // namespace

void SecretServiceKeyStore::add(const KeyName& name, const QByteArray& secret)
{
    SecretConversation ring;
    if (!ring.service())
        return;
    const Owned<SecretValue> value(
        secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = "Varno (" + name.account.toUtf8() + ")";
    const auto result = ring.await([&](auto... rest) {
        secret_service_store(ring.service(), &schema(), attributes(name).get(),
                             SECRET_COLLECTION_DEFAULT, label.constData(), value.get(), rest...);
    });
    secret_service_store_finish(ring.service(), result.get(), IgnoredError());
}

void SecretServiceKeyStore::remove(const KeyName& name)
{
    SecretConversation ring;
    if (!ring.service())
        return;
    // The next call passes over what is locked.
    const auto unlocked = ring.await([&](auto... rest) {
        const int flags = SECRET_SEARCH_ALL | SECRET_SEARCH_UNLOCK;
        secret_service_search(ring.service(), &schema(), attributes(name).get(),
                              static_cast<SecretSearchFlags>(flags), rest...);
    });
    const Owned<GList> items(
        secret_service_search_finish(ring.service(), unlocked.get(), IgnoredError()));
    const auto result = ring.await([&](auto... rest) {
        secret_service_clear(ring.service(), &schema(), attributes(name).get(), rest...);
    });
    secret_service_clear_finish(ring.service(), result.get(), IgnoredError());
}

std::optional<QByteArray> SecretServiceKeyStore::find(const KeyName& name,
                                                      std::stop_token stop) const
{
    SecretConversation ring(std::move(stop));
    if (!ring.service())
        return std::nullopt;
    const auto result = ring.await([&](auto... rest) {
        secret_service_lookup(ring.service(), &schema(), attributes(name).get(), rest...);
    });
    const Owned<SecretValue> value(
        secret_service_lookup_finish(ring.service(), result.get(), IgnoredError()));
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const gchar* bytes = secret_value_get(value.get(), &length);
    return QByteArray(bytes, static_cast<qsizetype>(length));
}

KeyPresence SecretServiceKeyStore::presence(const KeyName& name) const
{
    SecretConversation ring;
    if (!ring.service())
        return KeyPresence::unreachable;
    const auto result = ring.await([&](auto... rest) {
        secret_service_search(ring.service(), &schema(), attributes(name).get(), SECRET_SEARCH_NONE,
                              rest...);
    });
    GError* error = nullptr;
    const Owned<GList> items(secret_service_search_finish(ring.service(), result.get(), &error));
    if (error) {
        g_error_free(error);
        return KeyPresence::unreachable;
    }
    return items ? KeyPresence::present : KeyPresence::absent;
}

} // namespace varno

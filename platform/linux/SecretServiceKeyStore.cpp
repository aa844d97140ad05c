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

QByteArray bytesOf(SecretValue& value)
{
    gsize length = 0;
    const gchar* bytes = secret_value_get(&value, &length);
    return {bytes, static_cast<qsizetype>(length)};
}

Owned<GList> search(SecretConversation& ring, const KeyName& name, int flags, GError** error)
{
    const auto found = ring.await([&](auto... rest) {
        secret_service_search(ring.service(), &schema(), attributes(name).get(),
                              static_cast<SecretSearchFlags>(flags), rest...);
    });
    return Owned<GList>(secret_service_search_finish(ring.service(), found.get(), error));
}

/// Whether every item of that name can be changed, if need be by the user's leave.
bool unlock(SecretConversation& ring, const KeyName& name)
{
    const Owned<GList> items = search(ring, name, SECRET_SEARCH_ALL, IgnoredError());
    int locked = 0;
    for (const GList* item = items.get(); item; item = item->next)
        locked += secret_item_get_locked(SECRET_ITEM(item->data)) ? 1 : 0;
    if (locked == 0)
        return true;
    const auto asked = ring.await(
        [&](auto... rest) { secret_service_unlock(ring.service(), items.get(), rest...); });
    return secret_service_unlock_finish(ring.service(), asked.get(), nullptr, IgnoredError()) >=
           locked;
}

void clear(SecretConversation& ring, const KeyName& name)
{
    const auto cleared = ring.await([&](auto... rest) {
        secret_service_clear(ring.service(), &schema(), attributes(name).get(), rest...);
    });
    secret_service_clear_finish(ring.service(), cleared.get(), IgnoredError());
}

void add(SecretConversation& ring, const KeyName& name, const QByteArray& secret)
{
    const Owned<SecretValue> value(
        secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = "Varno (" + name.account.toUtf8() + ")";
    const auto added = ring.await([&](auto... rest) {
        secret_service_store(ring.service(), &schema(), attributes(name).get(),
                             SECRET_COLLECTION_DEFAULT, label.constData(), value.get(), rest...);
    });
    secret_service_store_finish(ring.service(), added.get(), IgnoredError());
}

} // namespace

void SecretServiceKeyStore::replace(const KeyName& name, const QByteArray& secret,
                                    std::stop_token stop)
{
    SecretConversation ring(std::move(stop));
    if (!ring.service() || !unlock(ring, name))
        return; // to go on would be to ask again
    clear(ring, name);
    add(ring, name, secret);
}

void SecretServiceKeyStore::remove(const KeyName& name, std::stop_token stop)
{
    SecretConversation ring(std::move(stop));
    if (ring.service() && unlock(ring, name))
        clear(ring, name);
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
    return bytesOf(*value);
}

KeyGlance SecretServiceKeyStore::look(const KeyName& name, std::stop_token stop) const
{
    SecretConversation ring(std::move(stop));
    if (!ring.service())
        return {};
    GError* error = nullptr;
    const Owned<GList> items = search(ring, name, SECRET_SEARCH_LOAD_SECRETS, &error);
    if (error) {
        g_error_free(error);
        return {};
    }
    if (!items)
        return {KeyGlance::State::absent};
    const Owned<SecretValue> value(secret_item_get_secret(SECRET_ITEM(items->data)));
    return value ? KeyGlance{KeyGlance::State::open, bytesOf(*value)}
                 : KeyGlance{KeyGlance::State::locked};
}

} // namespace varno

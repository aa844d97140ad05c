#include "providers/KeychainService.h"

#include "platform/Platform.h"

#include <QStringDecoder>

#include <utility>

namespace varno {

const KeychainService& KeychainService::shared()
{
    // Never destroyed: while the process exits there may be threads that ask it.
    static const KeychainService& service = *new KeychainService(systemKeyStore());
    return service;
}

KeychainService::KeychainService(KeyStore& store)
    : m_store(store)
{
}

void KeychainService::save(const QString& key, const QString& account) const
{
    const KeyName name{.service = service, .account = account};
    m_store.remove(name);
    m_store.add(name, key.toUtf8());
}

std::optional<QString> KeychainService::load(const QString& account, std::stop_token stop) const
{
    const auto bytes = m_store.find({.service = service, .account = account}, std::move(stop));
    if (!bytes)
        return std::nullopt;
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                    QStringDecoder::Flag::ConvertInitialBom);
    const QString key = decode(*bytes);
    return decode.hasError() ? std::nullopt : std::optional(key);
}

void KeychainService::remove(const QString& account) const
{
    m_store.remove({.service = service, .account = account});
}

KeyPresence KeychainService::presence(const QString& account) const
{
    return m_store.presence({.service = service, .account = account});
}

} // namespace varno

#pragma once

#include "providers/KeychainService.h"
#include "tests/Test.h"

#include <array>
#include <future>

namespace varno {

using KeyText = std::optional<QString>;

/// A store of keys, and the desktop around it, past the code under test.
struct KeyStoreDesk {
    enum class User { refuses, silent };

    KeyStore& store;
    std::function<qsizetype()> itemCount; ///< of the account for Anthropic
    std::function<void()> lock;
    std::function<void()> unlock;
    /// From now on the user is asked; how often, is told as long as the result lives.
    std::function<std::function<int()>(User)> meetUser;
};

inline void verifyKeysAreKeptAsTheyAre(const KeyStoreDesk& desk)
{
    const KeychainService keychain(desk.store);
    const QString account = keychain.anthropicAccount;
    keychain.save(u"other"_s, keychain.geminiAccount);
    for (const QString& key :
         {u"sk-ant-api03-abc_DEF"_s, u""_s, u"  one\r\ntwo\t\n "_s, u"\uFEFFключ 🔑 é"_s,
          u"a"_s + QChar(0) + u"b"_s, QString(100000, u'k')}) {
        keychain.save(u"before"_s, account);
        keychain.save(key, account);
        QCOMPARE(desk.itemCount(), 1);
        QCOMPARE(keychain.load(account), KeyText(key));
        QCOMPARE(keychain.presence(account),
                 key.isEmpty() ? KeyPresence::absent : KeyPresence::present);
        keychain.remove(account);
        QCOMPARE(desk.itemCount(), 0);
        QCOMPARE(keychain.load(account), KeyText());
        QCOMPARE(keychain.presence(account), KeyPresence::absent);
    }
    QCOMPARE(keychain.load(keychain.geminiAccount), KeyText(u"other"_s));

    const QByteArray noText = "key\xe2\x82";
    desk.store.replace({.service = keychain.service, .account = account}, noText, {});
    QCOMPARE(desk.itemCount(), 1);
    QCOMPARE(keychain.load(account), KeyText());
    QCOMPARE(keychain.presence(account), KeyPresence::absent);
}

inline void verifyNothingChangesWithoutLeave(const KeyStoreDesk& desk)
{
    const KeychainService keychain(desk.store);
    const QString account = keychain.anthropicAccount;
    const QString other = keychain.geminiAccount;
    keychain.save(u"old"_s, account);
    desk.lock();
    {
        const auto asked = desk.meetUser(KeyStoreDesk::User::refuses);
        auto first = keychain.request(account);
        auto second = keychain.request(account);
        QCOMPARE(KeychainService::load(std::move(first), {}), KeyText());
        QCOMPARE(KeychainService::load(std::move(second), {}), KeyText());
        QCOMPARE(asked(), 1); // for what was asked together
        QCOMPARE(keychain.load(account), KeyText());
        keychain.save(u"new"_s, account);
        keychain.save(u"new"_s, other);
        keychain.remove(account);
        QCOMPARE(asked(), 5); // each time, since the user may know better later
    }
    desk.unlock();
    QCOMPARE(keychain.load(account), KeyText(u"old"_s));
    QCOMPARE(keychain.load(other), KeyText());
}

inline void verifyWaitHoldsUpNobodyAndCanBeStopped(const KeyStoreDesk& desk)
{
    using namespace std::chrono_literals;
    const KeychainService keychain(desk.store);
    const QString account = keychain.anthropicAccount;
    keychain.save(u"key"_s, account);
    const auto asked = desk.meetUser(KeyStoreDesk::User::silent);
    desk.lock();
    QCOMPARE(keychain.presence(account), KeyPresence::present);
    QCOMPARE(keychain.presence(keychain.geminiAccount), KeyPresence::absent);
    QCOMPARE(asked(), 0); // for a glance never
    std::array<std::stop_source, 2> stops;
    std::array<std::future<KeyText>, 2> keys;
    for (std::size_t i = 0; i < keys.size(); ++i)
        keys[i] = std::async(std::launch::async,
                             [&, i] { return keychain.load(account, stops[i].get_token()); });
    QTRY_COMPARE(asked(), 1);
    QCOMPARE(keychain.presence(account), KeyPresence::present);
    for (std::size_t i = 0; i < keys.size(); ++i) { // each stop is for one alone
        QCOMPARE(keys[i].wait_for(0s), std::future_status::timeout);
        stops[i].request_stop();
        // Without an event loop: at its end, the program waits here.
        QCOMPARE(keys[i].wait_for(30s), std::future_status::ready);
        QCOMPARE(keys[i].get(), KeyText());
    }
}

} // namespace varno

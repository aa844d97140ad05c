// clang-format off: GLib first, it has members called `signals`
#include <gio/gio.h>
// clang-format on

#include "platform/linux/SecretServiceKeyStore.h"
#include "providers/KeychainService.h"

#include <QFile>
#include <QLibrary>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

using namespace varno;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Key = std::optional<QString>;

struct Release {
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(char* text) const { g_free(text); }
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Value = std::unique_ptr<GVariant, Release>;

constexpr const char* secrets = "org.freedesktop.secrets";
constexpr const char* secretsPath = "/org/freedesktop/secrets";
constexpr const char* serviceInterface = "org.freedesktop.Secret.Service";

/// Sets the session bus of the process; the one before returns at the end.
class SessionBusAddress {
public:
    explicit SessionBusAddress(const QByteArray& address)
        : m_before(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    }
    ~SessionBusAddress() { qputenv("DBUS_SESSION_BUS_ADDRESS", m_before); }
    Q_DISABLE_COPY_MOVE(SessionBusAddress)

private:
    QByteArray m_before;
};

/// A caller on the session bus, apart from the code under test.
class Caller {
public:
    Caller()
        : m_connection(g_dbus_connection_new_for_address_sync(
              qgetenv("DBUS_SESSION_BUS_ADDRESS").constData(),
              GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                   G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr))
    {
        if (!m_connection)
            qFatal("There is no session bus");
    }

    [[nodiscard]] GDBusConnection* connection() const { return m_connection.get(); }

    Value call(const char* name, const char* path, const char* interface, const char* method,
               GVariant* arguments) const
    {
        GError* error = nullptr;
        GVariant* reply = g_dbus_connection_call_sync(m_connection.get(), name, path, interface,
                                                      method, arguments, nullptr,
                                                      G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
        if (error)
            qWarning("%s: %s", method, error->message);
        g_clear_error(&error);
        return Value(reply);
    }

    bool isOwned(const char* name) const
    {
        const Value reply =
            call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                 "NameHasOwner", g_variant_new("(s)", name));
        gboolean result = FALSE;
        if (reply)
            g_variant_get(reply.get(), "(b)", &result);
        return result;
    }

    bool takeName(const char* name) const
    {
        const Value reply =
            call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                 "RequestName", g_variant_new("(su)", name, 4U)); // 4: do not queue
        guint32 result = 0;
        if (reply)
            g_variant_get(reply.get(), "(u)", &result);
        return result == 1;
    }

private:
    std::unique_ptr<GDBusConnection, Release> m_connection;
};

/// The key ring of the session, past the code under test.
class KeyRing {
public:
    /// The paths of the items, locked or not, of one account of the service.
    [[nodiscard]] QList<QByteArray> items(const QString& account) const
    {
        GVariantBuilder attributes;
        g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
        g_variant_builder_add(&attributes, "{ss}", "service", "com.kelbrin.varno");
        g_variant_builder_add(&attributes, "{ss}", "account", account.toUtf8().constData());
        const Value reply = m_caller.call(secrets, secretsPath, serviceInterface, "SearchItems",
                                          g_variant_new("(a{ss})", &attributes));
        QList<QByteArray> paths;
        for (gsize list = 0; list < 2; ++list) {
            const Value part(g_variant_get_child_value(reply.get(), list));
            for (gsize i = 0; i < g_variant_n_children(part.get()); ++i) {
                const Value path(g_variant_get_child_value(part.get(), i));
                paths << g_variant_get_string(path.get(), nullptr);
            }
        }
        return paths;
    }

    [[nodiscard]] QByteArray attribute(const QByteArray& item, const char* name) const
    {
        const Value attributes = property(item, "org.freedesktop.Secret.Item", "Attributes");
        const char* value = nullptr;
        return g_variant_lookup(attributes.get(), name, "&s", &value) ? value : "(none)";
    }

    [[nodiscard]] bool isLocked() const
    {
        return g_variant_get_boolean(
            property(collection(), "org.freedesktop.Secret.Collection", "Locked").get());
    }

    void lock() const
    {
        const QByteArray path = collection();
        const char* only = path.constData();
        m_caller.call(secrets, secretsPath, serviceInterface, "Lock",
                      g_variant_new("(@ao)", g_variant_new_objv(&only, 1)));
    }

    /// As a login does, with the password of the session's script.
    void unlock() const
    {
        const Value opened =
            m_caller.call(secrets, secretsPath, serviceInterface, "OpenSession",
                          g_variant_new("(sv)", "plain", g_variant_new_string("")));
        const char* session = nullptr;
        g_variant_get(opened.get(), "(v&o)", nullptr, &session);
        const auto bytes = [](const char* text) {
            return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, text, strlen(text), 1);
        };
        m_caller.call(secrets, secretsPath,
                      "org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface",
                      "UnlockWithMasterPassword",
                      g_variant_new("(o(o@ay@ays))", collection().constData(), session, bytes(""),
                                    bytes("varno"), "text/plain"));
    }

private:
    [[nodiscard]] QByteArray collection() const
    {
        const Value reply = m_caller.call(secrets, secretsPath, serviceInterface, "ReadAlias",
                                          g_variant_new("(s)", "default"));
        const char* path = nullptr;
        g_variant_get(reply.get(), "(&o)", &path);
        return path;
    }

    [[nodiscard]] Value property(const QByteArray& path, const char* interface,
                                 const char* name) const
    {
        const Value reply =
            m_caller.call(secrets, path.constData(), "org.freedesktop.DBus.Properties", "Get",
                          g_variant_new("(ss)", interface, name));
        GVariant* value = nullptr;
        g_variant_get(reply.get(), "(v)", &value);
        return Value(value);
    }

    Caller m_caller;
};

/// Hides what the user types from the bus, as prompters and the key ring agree to.
class SecretExchange {
public:
    SecretExchange()
    {
        QLibrary library(u"gcr-base-3"_s, 1);
        if (!library.load())
            return;
        m_make = reinterpret_cast<Make>(library.resolve("gcr_secret_exchange_new"));
        m_receive = reinterpret_cast<Receive>(library.resolve("gcr_secret_exchange_receive"));
        m_send = reinterpret_cast<Send>(library.resolve("gcr_secret_exchange_send"));
    }

    explicit operator bool() const { return m_make && m_receive && m_send; }

    /// The answer to `begin`, which came from the key ring.
    QByteArray answer(const char* begin, const char* secret) const
    {
        const std::unique_ptr<GObject, Release> exchange(m_make(nullptr));
        if (!m_receive(exchange.get(), begin))
            return {};
        const std::unique_ptr<char, Release> text(m_send(exchange.get(), secret, -1));
        return text.get();
    }

private:
    using Make = GObject* (*)(const char* protocol);
    using Receive = gboolean (*)(GObject* exchange, const char* text);
    using Send = char* (*)(GObject* exchange, const char* secret, gssize length);

    Make m_make = nullptr;
    Receive m_receive = nullptr;
    Send m_send = nullptr;
};

/// Stands where the desktop's prompter would, and for its user: types the password, refuses, or
/// never answers.
class Prompter {
public:
    enum class User { knows, refuses, silent };

    explicit Prompter(User user)
        : m_user(user)
    {
        m_filter = g_dbus_connection_add_filter(m_caller.connection(), &Prompter::onMessage, this,
                                                nullptr);
        if (!m_caller.takeName("org.gnome.keyring.SystemPrompter"))
            qFatal("There is another prompter");
    }
    ~Prompter() { g_dbus_connection_remove_filter(m_caller.connection(), m_filter); }
    Q_DISABLE_COPY_MOVE(Prompter)

    [[nodiscard]] int askedCount() const { return m_asked; }

private:
    static GDBusMessage* onMessage(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                   gpointer user)
    {
        if (!isIncoming ||
            g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
            return message;
        static_cast<Prompter*>(user)->onCall(message);
        g_object_unref(message);
        return nullptr;
    }

    void onCall(GDBusMessage* message)
    {
        send(g_dbus_message_new_method_reply(message));
        GVariant* body = g_dbus_message_get_body(message);
        const Value prompt(g_variant_get_child_value(body, 0));
        const char* path = g_variant_get_string(prompt.get(), nullptr);
        const QByteArray method = g_dbus_message_get_member(message);
        if (method == "BeginPrompting")
            sendReady(g_dbus_message_get_sender(message), path, "");
        if (method != "PerformPrompt")
            return;
        ++m_asked;
        if (m_user == User::refuses)
            sendReady(g_dbus_message_get_sender(message), path, "no");
        if (m_user == User::knows) {
            const Value begin(g_variant_get_child_value(body, 3));
            sendReady(g_dbus_message_get_sender(message), path, "yes",
                      m_exchange.answer(g_variant_get_string(begin.get(), nullptr), "varno"));
        }
    }

    void sendReady(const char* daemon, const char* path, const char* answer,
                   const QByteArray& exchange = {})
    {
        GDBusMessage* ready = g_dbus_message_new_method_call(
            daemon, path, "org.gnome.keyring.internal.Prompter.Callback", "PromptReady");
        g_dbus_message_set_body(ready,
                                g_variant_new("(sa{sv}s)", answer, nullptr, exchange.constData()));
        send(ready);
    }

    void send(GDBusMessage* message)
    {
        g_dbus_connection_send_message(m_caller.connection(), message,
                                       G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(message);
    }

    Caller m_caller;
    SecretExchange m_exchange;
    User m_user;
    std::atomic<int> m_asked = 0;
    guint m_filter = 0;
};

/// A session bus of its own that starts no services, and on request a key ring there.
class PrivateBus {
public:
    PrivateBus()
    {
        QFile configuration(m_folder.filePath(u"bus.conf"_s));
        if (!configuration.open(QIODevice::WriteOnly))
            qFatal("Cannot write the configuration of the bus");
        configuration.write("<busconfig><type>session</type><listen>unix:dir=" +
                            QFile::encodeName(m_folder.path()) +
                            "</listen><policy context=\"default\">"
                            "<allow send_destination=\"*\"/><allow eavesdrop=\"false\"/>"
                            "<allow own=\"*\"/></policy></busconfig>");
        configuration.close();
        m_bus.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s,
                                       u"--config-file="_s + configuration.fileName()});
        while (!m_bus.canReadLine() && m_bus.waitForReadyRead()) {
        }
        m_address = m_bus.readLine().trimmed();
    }
    ~PrivateBus()
    {
        end();
        endKeyRing();
    }
    Q_DISABLE_COPY_MOVE(PrivateBus)

    [[nodiscard]] const QByteArray& address() const { return m_address; }

    void startKeyRing()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, QString::fromUtf8(m_address));
        environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
        environment.insert(u"HOME"_s, m_folder.path());
        m_daemon.setProcessEnvironment(environment);
        m_daemon.setStandardOutputFile(QProcess::nullDevice());
        m_daemon.setStandardErrorFile(QProcess::nullDevice());
        m_daemon.start(u"gnome-keyring-daemon"_s,
                       {u"--foreground"_s, u"--unlock"_s, u"--components=secrets"_s});
        m_daemon.write("varno");
        m_daemon.closeWriteChannel();
        m_daemon.waitForBytesWritten();
        const SessionBusAddress bus(m_address);
        const Caller caller;
        while (!caller.isOwned(secrets))
            m_daemon.waitForFinished(20);
    }

    void end()
    {
        m_bus.kill();
        m_bus.waitForFinished();
    }

    void endKeyRing()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QTemporaryDir m_folder;
    QProcess m_bus;
    QProcess m_daemon;
    QByteArray m_address;
};

} // namespace

class KeychainServiceTest : public QObject {
    Q_OBJECT

private:
    SecretServiceKeyStore m_store;
    const KeychainService m_keychain{m_store};
    const QString m_account = m_keychain.anthropicAccount;
    const KeyName m_name{.service = m_keychain.service, .account = m_account};

private slots:
    void init()
    {
        if (KeyRing().isLocked())
            KeyRing().unlock();
        m_keychain.remove(m_account);
        m_keychain.remove(m_keychain.geminiAccount);
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::absent);
    }

    void absentAtFirst()
    {
        QCOMPARE(m_keychain.load(m_account), Key());
        QCOMPARE(KeyRing().items(m_account).size(), 0);
    }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("plain") << u"sk-ant-api03-abc_DEF"_s;
        QTest::newRow("empty") << u""_s;
        QTest::newRow("blanks") << u"  key\t "_s;
        QTest::newRow("line ends") << u"one\r\ntwo\n"_s;
        QTest::newRow("other scripts") << u"ключ 🔑 \U0001F9EA é"_s;
        QTest::newRow("byte order mark") << u"\uFEFFkey"_s;
        QTest::newRow("zero") << u"a"_s + QChar(0) + u"b"_s;
        QTest::newRow("long") << QString(100'000, u'k');
    }

    void roundTrip()
    {
        QFETCH(QString, key);
        m_keychain.save(key, m_account);
        QCOMPARE(m_keychain.load(m_account), Key(key));
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::present);
        m_keychain.remove(m_account);
        QCOMPARE(m_keychain.load(m_account), Key());
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::absent);
    }

    void savingAgainReplaces()
    {
        m_keychain.save(u"first"_s, m_account);
        m_keychain.save(u"second"_s, m_account);
        QCOMPARE(KeyRing().items(m_account).size(), 1);
        QCOMPARE(m_keychain.load(m_account), Key(u"second"_s));
    }

    void accountsAreApart()
    {
        m_keychain.save(u"one"_s, m_account);
        m_keychain.save(u"two"_s, m_keychain.geminiAccount);
        QCOMPARE(m_keychain.load(m_account), Key(u"one"_s));
        QCOMPARE(m_keychain.load(m_keychain.geminiAccount), Key(u"two"_s));
        m_keychain.remove(m_account);
        QCOMPARE(m_keychain.load(m_account), Key());
        QCOMPARE(m_keychain.load(m_keychain.geminiAccount), Key(u"two"_s));
    }

    void bytesThatAreNoTextAreNoKey_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("no UTF-8") << QByteArray("key\xff");
        QTest::newRow("cut character") << QByteArray("key\xe2\x82");
        QTest::newRow("overlong") << QByteArray("\xc0\xaf");
        QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80");
    }

    void bytesThatAreNoTextAreNoKey()
    {
        QFETCH(QByteArray, bytes);
        m_store.add(m_name, bytes);
        QCOMPARE(m_store.find(m_name, {}), std::optional(bytes));
        QCOMPARE(m_keychain.load(m_account), Key());
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::present);
    }

    void itemCarriesItsName()
    {
        m_keychain.save(u"key"_s, m_account);
        const KeyRing ring;
        const QList<QByteArray> items = ring.items(m_account);
        QCOMPARE(items.size(), 1);
        QCOMPARE(ring.attribute(items.constFirst(), "service"), "com.kelbrin.varno");
        QCOMPARE(ring.attribute(items.constFirst(), "account"), "anthropic-api-key");
    }

    void manyThreadsAtOnce()
    {
        m_keychain.save(u"key"_s, m_account);
        std::atomic<int> found = 0;
        {
            std::vector<std::jthread> threads;
            threads.reserve(8);
            for (int i = 0; i < 8; ++i)
                threads.emplace_back([&] {
                    for (int j = 0; j < 5; ++j)
                        found += m_keychain.load(m_account) == u"key"_s &&
                                 m_keychain.presence(m_account) == KeyPresence::present;
                });
        }
        QCOMPARE(found.load(), 40);
    }

    void stoppedBeforehandFindsNothing()
    {
        m_keychain.save(u"key"_s, m_account);
        std::stop_source stop;
        stop.request_stop();
        QCOMPARE(m_keychain.load(m_account, stop.get_token()), Key());
    }

    void lockedKeyRingShowsWhatIsThere()
    {
        m_keychain.save(u"key"_s, m_account);
        const Prompter prompter(Prompter::User::silent);
        const KeyRing ring;
        ring.lock();
        QVERIFY(ring.isLocked());
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::present);
        QCOMPARE(m_keychain.presence(m_keychain.geminiAccount), KeyPresence::absent);
        QCOMPARE(prompter.askedCount(), 0);
        QVERIFY(ring.isLocked());
    }

    void lockedKeyRingWithoutPrompterGivesNothing()
    {
        m_keychain.save(u"key"_s, m_account);
        const KeyRing ring;
        ring.lock();
        QCOMPARE(m_keychain.load(m_account), Key()); // no display: no prompter
        ring.unlock();
        QCOMPARE(m_keychain.load(m_account), Key(u"key"_s));
    }

    void userUnlocksTheKeyRing()
    {
        if (!SecretExchange())
            QSKIP(
                "libgcr-base-3, by which the prompter of the test hides the password, is missing");
        m_keychain.save(u"key"_s, m_account);
        const Prompter prompter(Prompter::User::knows);
        const KeyRing ring;
        ring.lock();
        QCOMPARE(m_keychain.load(m_account), Key(u"key"_s));
        QCOMPARE(prompter.askedCount(), 1);
        QVERIFY(!ring.isLocked());

        ring.lock();
        m_keychain.save(u"new"_s, m_account);
        QVERIFY(!ring.isLocked());
        QCOMPARE(ring.items(m_account).size(), 1);
        QCOMPARE(m_keychain.load(m_account), Key(u"new"_s));

        ring.lock();
        m_keychain.remove(m_account);
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::absent);
    }

    void refusalChangesNothing()
    {
        m_keychain.save(u"old"_s, m_account);
        const Prompter prompter(Prompter::User::refuses);
        const KeyRing ring;
        ring.lock();
        QCOMPARE(m_keychain.load(m_account), Key());
        QVERIFY(prompter.askedCount() > 0);
        m_keychain.save(u"new"_s, m_account);
        m_keychain.save(u"new"_s, m_keychain.geminiAccount);
        m_keychain.remove(m_account);
        QVERIFY(ring.isLocked());
        ring.unlock();
        QCOMPARE(m_keychain.load(m_account), Key(u"old"_s));
        QCOMPARE(m_keychain.load(m_keychain.geminiAccount), Key());
    }

    void waitForTheUserHoldsUpNobodyAndCanBeStopped()
    {
        m_keychain.save(u"key"_s, m_account);
        const Prompter prompter(Prompter::User::silent);
        const KeyRing ring;
        ring.lock();
        std::stop_source stop;
        std::future<Key> key = std::async(
            std::launch::async, [&] { return m_keychain.load(m_account, stop.get_token()); });
        QTRY_COMPARE(prompter.askedCount(), 1);
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::present);
        QCOMPARE(key.wait_for(0s), std::future_status::timeout);
        stop.request_stop();
        // Without an event loop: at its end, the program waits here.
        QCOMPARE(key.wait_for(30s), std::future_status::ready);
        QCOMPARE(key.get(), Key());
        ring.unlock();
        QCOMPARE(m_keychain.load(m_account), Key(u"key"_s));
    }

    void withoutABusNothingIsReached_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::newRow("nobody listens") << QByteArray("unix:path=/nonexistent/bus");
        QTest::newRow("no address") << QByteArray("nonsense");
        QTest::newRow("empty") << QByteArray("");
    }

    void withoutABusNothingIsReached()
    {
        QFETCH(QByteArray, address);
        const SessionBusAddress bus(address);
        QTRY_COMPARE(m_keychain.presence(m_account), KeyPresence::unreachable);
        m_keychain.save(u"key"_s, m_account);
        QCOMPARE(m_keychain.load(m_account), Key());
        m_keychain.remove(m_account);
    }

    void busWithoutAKeyRing()
    {
        const PrivateBus own;
        const SessionBusAddress bus(own.address());
        QTRY_COMPARE(m_keychain.presence(m_account), KeyPresence::unreachable);
        m_keychain.save(u"key"_s, m_account);
        QCOMPARE(m_keychain.load(m_account), Key());
        m_keychain.remove(m_account);
    }

    void endOfTheKeyRingIsSurvived_data()
    {
        QTest::addColumn<bool>("endsTheBus");
        QTest::newRow("with the bus") << true;
        QTest::newRow("alone") << false;
    }

    void endOfTheKeyRingIsSurvived()
    {
        QFETCH(bool, endsTheBus);
        m_keychain.save(u"key"_s, m_account);
        {
            PrivateBus own;
            own.startKeyRing();
            const SessionBusAddress bus(own.address());
            QCOMPARE(m_keychain.presence(m_account), KeyPresence::absent);
            m_keychain.save(u"other"_s, m_account);
            QCOMPARE(m_keychain.load(m_account), Key(u"other"_s));
            const Prompter prompter(Prompter::User::silent);
            KeyRing().lock();
            std::future<Key> waiting =
                std::async(std::launch::async, [&] { return m_keychain.load(m_account); });
            QTRY_COMPARE(prompter.askedCount(), 1);
            endsTheBus ? own.end() : own.endKeyRing();
            QCOMPARE(waiting.wait_for(30s), std::future_status::ready);
            QCOMPARE(waiting.get(), Key());
            QCOMPARE(m_keychain.presence(m_account), KeyPresence::unreachable);
        }
        // Until the end of a connection has been dealt with in its thread, it is still the one.
        QTRY_COMPARE(m_keychain.load(m_account), Key(u"key"_s));
    }
};

QTEST_GUILESS_MAIN(KeychainServiceTest)
#include "KeychainServiceTest.moc"

#include "platform/linux/GLibOwned.h"
#include "platform/linux/SecretServiceKeyStore.h"
#include "tests/KeyStoreCases.h"
#include "tests/PrivateBus.h"

#include <QDataStream>
#include <QLocalSocket>
#include <QProcess>

#include <atomic>

namespace {

using Key = std::optional<QString>;

constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";
const QString keyRing = u"/org/freedesktop/secrets"_s;
const QString collection = keyRing + u"/collection/login"_s;

/// What the key ring of the session's bus answers, past the code under test; nothing after an
/// error.
QByteArray call(const QString& path, const QString& method, const QStringList& arguments)
{
    QProcess process;
    process.start(u"dbus-send"_s, QStringList{u"--session"_s, u"--print-reply=literal"_s,
                                              u"--dest=org.freedesktop.secrets"_s, path, method} +
                                      arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

qsizetype itemCount()
{
    return call(keyRing, u"org.freedesktop.Secret.Service.SearchItems"_s,
                {u"dict:string:string:service,com.kelbrin.varno,account,anthropic-api-key"_s})
        .count("/org/freedesktop/secrets/collection/");
}

bool isLocked()
{
    return call(collection, u"org.freedesktop.DBus.Properties.Get"_s,
                {u"string:org.freedesktop.Secret.Collection"_s, u"string:Locked"_s})
        .contains("true");
}

void lock()
{
    call(keyRing, u"org.freedesktop.Secret.Service.Lock"_s, {u"array:objpath:"_s + collection});
    QVERIFY(isLocked());
}

/// Gives the key ring of the session the password, as a login does.
void unlock()
{
    QLocalSocket socket;
    socket.connectToServer(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/keyring/control"_s);
    QDataStream packet(&socket);
    const QByteArray password = "varno";
    packet << quint8(0) << quint32(12 + password.size()) << quint32(1) << password;
    QVERIFY(socket.waitForReadyRead());
    QVERIFY(!isLocked());
}

/// Stands where the desktop's prompter would, and for its user, who refuses or never answers.
class Prompter {
public:
    using User = KeyStoreDesk::User;

    explicit Prompter(User user)
        : m_user(user)
        , m_bus(g_dbus_connection_new_for_address_sync(
              qgetenv(busVariable).constData(),
              GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                   G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr))
        , m_filter(g_dbus_connection_add_filter(m_bus.get(), &Prompter::onMessage, this, nullptr))
    {
        const Owned<GVariant> reply(g_dbus_connection_call_sync(
            m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "org.gnome.keyring.SystemPrompter", 4U), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        guint32 result = 0;
        g_variant_get(reply.get(), "(u)", &result);
        if (result != 1)
            qFatal("There is another prompter");
    }
    ~Prompter() { g_dbus_connection_remove_filter(m_bus.get(), m_filter); }
    Q_DISABLE_COPY_MOVE(Prompter)

    [[nodiscard]] int askedCount() const { return m_asked; }

private:
    static GDBusMessage* onMessage(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                   gpointer user)
    {
        const auto type = g_dbus_message_get_message_type(message);
        if (!isIncoming || type != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
            return message;
        static_cast<Prompter*>(user)->onCall(message);
        g_object_unref(message);
        return nullptr;
    }

    void onCall(GDBusMessage* message)
    {
        send(g_dbus_message_new_method_reply(message));
        const QByteArray method = g_dbus_message_get_member(message);
        m_asked += method == "PerformPrompt";
        if (method == "BeginPrompting")
            answer(message, "");
        else if (method == "PerformPrompt" && m_user == User::refuses)
            answer(message, "no");
    }

    void answer(GDBusMessage* question, const char* word)
    {
        const Owned<GVariant> prompt(
            g_variant_get_child_value(g_dbus_message_get_body(question), 0));
        GDBusMessage* ready = g_dbus_message_new_method_call(
            g_dbus_message_get_sender(question), g_variant_get_string(prompt.get(), nullptr),
            "org.gnome.keyring.internal.Prompter.Callback", "PromptReady");
        g_dbus_message_set_body(ready, g_variant_new("(sa{sv}s)", word, nullptr, ""));
        send(ready);
    }

    void send(GDBusMessage* message)
    {
        g_dbus_connection_send_message(m_bus.get(), message, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                       nullptr, nullptr);
        g_object_unref(message);
    }

    User m_user;
    std::atomic<int> m_asked = 0;
    Owned<GDBusConnection> m_bus;
    guint m_filter;
};

} // namespace

class KeychainServiceTest : public QObject {
    Q_OBJECT

private:
    SecretServiceKeyStore m_store;
    const KeychainService m_keychain{m_store};
    const QString m_account = m_keychain.anthropicAccount;
    const QString m_other = m_keychain.geminiAccount;
    const QByteArray m_bus = qgetenv(busVariable);
    const KeyStoreDesk m_desk{.store = m_store,
                              .itemCount = &itemCount,
                              .lock = &lock,
                              .unlock = &unlock,
                              .meetUser = [](Prompter::User user) {
                                  const auto prompter = std::make_shared<Prompter>(user);
                                  return [prompter] { return prompter->askedCount(); };
                              }};

private Q_SLOTS:
    void init()
    {
        qputenv(busVariable, m_bus);
        if (isLocked())
            unlock();
        m_keychain.remove(m_account);
        m_keychain.remove(m_other);
        QCOMPARE(m_keychain.presence(m_account), KeyPresence::absent);
        QCOMPARE(m_keychain.load(m_account), Key());
    }

    void keyIsKeptAsItIs() { verifyKeysAreKeptAsTheyAre(m_desk); }

    void withoutThePasswordNothingChanges() { verifyNothingChangesWithoutLeave(m_desk); }

    void withoutAPrompterNothingIsFound()
    {
        m_keychain.save(u"old"_s, m_account);
        lock();
        QCOMPARE(m_keychain.load(m_account), Key());
    }

    void waitForTheUserHoldsUpNobodyAndCanBeStopped()
    {
        verifyWaitHoldsUpNobodyAndCanBeStopped(m_desk);
        QVERIFY(isLocked());
    }

    void nothingIsReached()
    {
        const PrivateBus bus; // without a key ring
        for (const QByteArray& address :
             {bus.address().toLatin1(), QByteArray("unix:path=/nonexistent/bus"), QByteArray()}) {
            qputenv(busVariable, address);
            QTRY_COMPARE(m_keychain.presence(m_account), KeyPresence::unreachable);
            m_keychain.save(u"key"_s, m_account);
            QCOMPARE(m_keychain.load(m_account), Key());
            m_keychain.remove(m_account);
        }
    }
};

VARNO_TEST(QCoreApplication, KeychainServiceTest)
#include "KeychainServiceTest.moc"

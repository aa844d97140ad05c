#pragma once

#include "tests/XDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUuid>

#include <csignal>

namespace varno {

using namespace Qt::StringLiterals;

/// `varno` in a process of its own, with a home folder of its own. Nothing that it sends leaves the
/// machine. It is killed with this, unless it has ended before.
class RunningProgram {
public:
    QString path = QString::fromUtf8(VARNO); ///< all before it starts
    QStringList arguments;
    QString busName = u"com.kelbrin.varno"_s;

    explicit RunningProgram(XDesktop& desktop, const QString& busAddress = usualBus())
        : m_desktop(desktop)
        , m_bus(QDBusConnection::connectToBus(busAddress, m_busName))
        , m_environment(QProcessEnvironment::systemEnvironment())
    {
        m_environment.insert(u"HOME"_s, m_home.path());
        for (const char* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                       "NO_PROXY", "no_proxy", "http_proxy"})
            m_environment.remove(QLatin1StringView(name));
        set("https_proxy", u"http://127.0.0.1:9"_s);
        set("DBUS_SESSION_BUS_ADDRESS", busAddress);
        set("VARNO_PANEL", u"hidden"_s); // until a test asks for it
    }
    ~RunningProgram()
    {
        m_process.kill();
        m_process.waitForFinished();
        QDBusConnection::disconnectFromBus(m_busName);
    }
    Q_DISABLE_COPY_MOVE(RunningProgram)

    static QString usualBus() { return qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"); }

    // Before it starts:
    void set(const char* variable, const QString& value)
    {
        m_environment.insert(QString::fromLatin1(variable), value);
    }
    void unset(const char* variable) { m_environment.remove(QString::fromLatin1(variable)); }

    /// Whether it has come as far as its event loop.
    bool start()
    {
        launch();
        return m_process.waitForStarted() &&
               QTest::qWaitFor([this] { return !isRunning() || answers(); }, patience) &&
               isRunning();
    }

    /// As when somebody starts it: nobody waits.
    void launch()
    {
        m_process.setProcessEnvironment(m_environment);
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(path, arguments);
    }
    /// Starts it in the same home as another one.
    void launchBeside(const RunningProgram& other)
    {
        set("HOME", other.home());
        launch();
    }

    [[nodiscard]] bool isRunning() const { return m_process.state() == QProcess::Running; }
    [[nodiscard]] qint64 id() const { return m_process.processId(); }

    /// Its exit status after the signal, if it runs; negative when it did not exit by itself.
    int end(int number = SIGTERM)
    {
        if (isRunning())
            ::kill(static_cast<pid_t>(id()), number);
        return waitForEnd();
    }
    int waitForEnd()
    {
        if (!QTest::qWaitFor([this] { return m_process.state() == QProcess::NotRunning; },
                             patience))
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -2;
    }

    /// All that it has printed so far, on both channels.
    QByteArray console()
    {
        m_console += m_process.readAll();
        return m_console;
    }

    // Of org.freedesktop.Application; whether it has replied.
    bool activate() { return call("Activate", {QVariantMap()}); }
    bool activateAction(const QString& name, const QVariantList& parameter = {})
    {
        return call("ActivateAction", {name, parameter, QVariantMap()});
    }

    /// Whether it has dealt with everything that was sent to it before this. What is sent later is
    /// answered later, but the keys have a connection of their own, and their turn may come second.
    bool settles() { return answers() && answers() && answers(); }

    /// The panel, when it is on the screen, or none.
    [[nodiscard]] xcb_window_t panel() const { return m_desktop.windowOf(id()); }
    [[nodiscard]] bool isShown() const { return panel() != XCB_NONE; }
    /// Whether it is on the screen and has the keyboard.
    [[nodiscard]] bool hasKeyboard() const
    {
        const xcb_window_t window = panel();
        return window != XCB_NONE && m_desktop.focus() == window;
    }

    /// What the panel shows, once it has stopped moving; nothing if it never does.
    [[nodiscard]] QByteArray restingPicture()
    {
        // Longer than anything rests in between, and each after a turn of its event loop.
        constexpr int looks = 50;
        QByteArray last;
        int same = 0;
        const auto rests = [&] {
            const QByteArray picture = answers() ? m_desktop.picture(panel()) : QByteArray();
            same = !picture.isEmpty() && picture == last ? same + 1 : 0;
            last = picture;
            return same == looks;
        };
        return QTest::qWaitFor(rests, patience) ? last : QByteArray();
    }

    [[nodiscard]] QString home() const { return m_home.path(); }
    [[nodiscard]] QString preferencesPath() const
    {
        return m_home.filePath(u".config/Varno/Varno.conf"_s);
    }
    [[nodiscard]] QString historyPath() const
    {
        return m_home.filePath(u".local/share/Varno/session_history.json"_s);
    }
    void setPreferences(const QByteArray& text) const
    {
        QDir().mkpath(QFileInfo(preferencesPath()).path());
        QFile file(preferencesPath());
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("Cannot write the preferences");
    }
    /// Whether a search was made and is remembered.
    [[nodiscard]] bool hasSearched(const QByteArray& query) const
    {
        return read(preferencesPath()).contains("\nsearchHistory=" + query + "\n");
    }

    /// The files in its home that contain `text`.
    [[nodiscard]] QStringList filesWith(const QByteArray& text) const
    {
        QStringList found;
        QDirIterator files(home(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext())
            if (const QString file = files.next(); read(file).contains(text))
                found.append(file);
        return found;
    }

private:
    static QByteArray read(const QString& name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool call(const char* method, const QVariantList& values)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            busName, u'/' + QString(busName).replace(u'.', u'/'), u"org.freedesktop.Application"_s,
            QLatin1StringView(method));
        message.setAutoStartService(false);
        message.setArguments(values);
        const QDBusPendingCall reply = m_bus.asyncCall(message);
        return QTest::qWaitFor([&] { return reply.isFinished(); }, patience) && !reply.isError();
    }
    bool answers() { return activateAction(u"nothing"_s); }

    XDesktop& m_desktop;
    QTemporaryDir m_home;
    QString m_busName = QUuid::createUuid().toString();
    QDBusConnection m_bus;
    QProcessEnvironment m_environment;
    QProcess m_process;
    QByteArray m_console;
};

} // namespace varno

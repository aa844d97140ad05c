#pragma once

#include <QProcess>

namespace varno {

using namespace Qt::StringLiterals;

/// A bus of the kind of a session's, on which nothing runs and nothing is started, until the test
/// ends it.
class PrivateBus {
public:
    PrivateBus()
    {
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--nofork"_s, u"--print-address"_s,
                        u"--config-file=" QT_TESTCASE_SOURCEDIR "/../scripts/session-bus.conf"_s});
        while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead()) {
        }
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
        if (m_address.isEmpty())
            qFatal("The bus does not start");
    }
    ~PrivateBus() { end(); }
    Q_DISABLE_COPY_MOVE(PrivateBus)

    [[nodiscard]] const QString& address() const { return m_address; }
    void end()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
    QString m_address;
};

} // namespace varno

#include "platform/LaunchContext.h"
#include "platform/linux/XConnection.h"

#include <QFile>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QByteArray take(const char* variable)
{
    QByteArray value = qgetenv(variable);
    qunsetenv(variable);
    return value;
}

/// Also by a copy of the menu's entry, which says otherwise: some sessions name what they start,
/// and systemd names the group of its processes.
bool isStartedBySession()
{
    if (!take("DESKTOP_AUTOSTART_ID").isEmpty())
        return true;
    QFile group(u"/proc/self/cgroup"_s);
    return group.open(QIODevice::ReadOnly) &&
           group.readAll().contains("app-com.kelbrin.varno@autostart.service");
}

} // namespace

UserAction ActivationMarks::action() const
{
    const bool prefersToken = !xConnection() || startupId.isEmpty();
    return {.token = prefersToken && !activationToken.isEmpty() ? activationToken : startupId};
}

LaunchContext takeLaunchContext()
{
    using Panel = LaunchContext::Panel;
    const QByteArray wanted = take("VARNO_PANEL");
    LaunchContext context;
    context.marks = {.startupId = take("DESKTOP_STARTUP_ID"),
                     .activationToken = take("XDG_ACTIVATION_TOKEN")};
    if (wanted == "hidden" || isStartedBySession())
        context.panel = Panel::hidden;
    else if (wanted == "shown")
        context.panel = Panel::shown;
    return context;
}

void onStartedAgain(QObject& /*context*/, const std::function<void()>& /*action*/) {}

} // namespace varno

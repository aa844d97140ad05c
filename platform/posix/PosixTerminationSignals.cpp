#include "platform/TerminationSignals.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace varno {
namespace {

constexpr std::array caughtSignals = {SIGTERM, SIGINT, SIGHUP};

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler has no other
int writingEnd = -1;

extern "C" void onSignal(int)
{
    const int savedError = errno;
    const char byte = 0;
    static_cast<void>(::write(writingEnd, &byte, 1) == 1);
    errno = savedError;
}

/// In two steps for each end: not every system can do both at once.
bool openPipe(std::array<int, 2>& ends)
{
    if (::pipe(ends.data()) != 0)
        return false;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

class PosixTerminationSignals final : public TerminationSignals {
public:
    PosixTerminationSignals()
    {
        if (!openPipe(m_pipe))
            return;
        writingEnd = m_pipe[1];
        m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
            std::array<char, 16> bytes = {};
            static_cast<void>(::read(m_pipe[0], bytes.data(), bytes.size()));
            Q_EMIT received();
        });
        handle(&onSignal);
    }

    ~PosixTerminationSignals() override
    {
        handle(SIG_DFL);
        writingEnd = -1;
        m_notifier.reset();
        for (const int end : m_pipe)
            ::close(end);
    }
    Q_DISABLE_COPY_MOVE(PosixTerminationSignals)

private:
    static void handle(void (*handler)(int))
    {
        struct sigaction action = {};
        action.sa_handler = handler; // NOLINT(cppcoreguidelines-pro-type-union-access)
        action.sa_flags = SA_RESTART;
        for (const int number : caughtSignals)
            ::sigaction(number, &action, nullptr);
    }

    std::array<int, 2> m_pipe = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace

std::unique_ptr<TerminationSignals> TerminationSignals::install()
{
    return std::make_unique<PosixTerminationSignals>();
}

} // namespace varno

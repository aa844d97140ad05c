#include "platform/ProcessSecrets.h"
#include "platform/linux/ProcessVisibility.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <cstdlib>
#include <mutex>

namespace varno {
namespace {

/// Who is not seen leaves no core, which is not limited then: programs that this one starts inherit
/// the limit, and are to have the user's own.
class Visibility {
public:
    /// From now on nobody sees it but while somebody wants it.
    void end()
    {
        const std::scoped_lock lock(m_mutex);
        m_hasEnded = true;
        ::getrlimit(RLIMIT_CORE, &m_usersLimit);
        apply();
    }
    void change(int difference)
    {
        const std::scoped_lock lock(m_mutex);
        m_wanted += difference;
        apply();
    }

private:
    void apply() const
    {
        if (!m_hasEnded)
            return; // for a debugger
        const rlimit none = {.rlim_cur = 0, .rlim_max = m_usersLimit.rlim_max};
        ::setrlimit(RLIMIT_CORE, &none);
        ::prctl(PR_SET_DUMPABLE, m_wanted > 0 ? 1 : 0);
        if (m_wanted == 0)
            ::setrlimit(RLIMIT_CORE, &m_usersLimit);
    }

    std::mutex m_mutex;
    int m_wanted = 0;
    bool m_hasEnded = false;
    rlimit m_usersLimit = {};
};

Visibility& visibility()
{
    static Visibility value;
    return value;
}

} // namespace

void keepSecrets()
{
    ::unsetenv("SSLKEYLOGFILE"); // libcurl, OpenSSL and GnuTLS all write there
#ifdef NDEBUG
    visibility().end();
#endif
}

ProcessVisibility::ProcessVisibility()
{
    visibility().change(+1);
}

ProcessVisibility::~ProcessVisibility()
{
    visibility().change(-1);
}

} // namespace varno

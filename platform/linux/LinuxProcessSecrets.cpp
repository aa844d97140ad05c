#include "platform/ProcessSecrets.h"
#include "platform/linux/ProcessVisibility.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <cstdlib>
#include <mutex>

namespace varno {
namespace {

/// How many want this process to be seen; a debugger does so always.
class Visibility {
public:
    void change(int difference)
    {
        const std::scoped_lock lock(m_mutex);
        m_wanted += difference;
        ::prctl(PR_SET_DUMPABLE, m_wanted > 0 ? 1 : 0);
    }

private:
    std::mutex m_mutex;
    int m_wanted = 1;
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
    constexpr rlimit none = {.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_CORE, &none);
    visibility().change(-1);
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

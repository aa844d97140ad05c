#pragma once

#include <QtGlobal>

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <vector>

namespace varno {

/// Takes all descriptors that this process may have, but for a few, as long as it is there. A
/// sanitizer needs two.
class AllDescriptors {
public:
    explicit AllDescriptors(std::size_t spare)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_limit);
        rlimit lower = m_limit;
        lower.rlim_cur = 256;
        ::setrlimit(RLIMIT_NOFILE, &lower);
        for (int taken = 0; (taken = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
            m_taken.push_back(taken);
        for (; spare > 0; --spare) {
            ::close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~AllDescriptors()
    {
        for (const int taken : m_taken)
            ::close(taken);
        ::setrlimit(RLIMIT_NOFILE, &m_limit);
    }
    Q_DISABLE_COPY_MOVE(AllDescriptors)

private:
    rlimit m_limit = {};
    std::vector<int> m_taken;
};

/// No thread starts as long as this is there: each asks for a stack that is larger than memory can
/// be.
class NoThreads {
public:
    NoThreads()
    {
        pthread_attr_t greedy = {};
        ::pthread_getattr_default_np(&m_usual);
        ::pthread_getattr_default_np(&greedy);
        ::pthread_attr_setstacksize(&greedy, std::size_t{1} << 48U);
        ::pthread_setattr_default_np(&greedy);
        ::pthread_attr_destroy(&greedy);
    }
    ~NoThreads()
    {
        ::pthread_setattr_default_np(&m_usual);
        ::pthread_attr_destroy(&m_usual);
    }
    Q_DISABLE_COPY_MOVE(NoThreads)

private:
    pthread_attr_t m_usual = {};
};

} // namespace varno

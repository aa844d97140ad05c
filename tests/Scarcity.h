#pragma once

#include <QtGlobal>

#include <pthread.h>

namespace varno {

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

#pragma once

#include <stop_token>

namespace varno {

/// A stop that either of two can ask for.
class EitherStop {
public:
    EitherStop(const std::stop_token& one, const std::stop_token& other)
        : m_one(one, Pass{m_source})
        , m_other(other, Pass{m_source})
    {
    }

    [[nodiscard]] std::stop_token token() const { return m_source.get_token(); }

private:
    struct Pass {
        std::stop_source& source;
        void operator()() const { source.request_stop(); }
    };

    std::stop_source m_source;
    std::stop_callback<Pass> m_one;
    std::stop_callback<Pass> m_other;
};

} // namespace varno

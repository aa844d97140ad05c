#include "demo/ReplyPlayer.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace varno {

ReplyPlayer::ReplyPlayer(Script script, Write write, std::stop_token stop)
    : m_script(std::move(script))
    , m_write(std::move(write))
    , m_stop(std::move(stop))
{
}

bool ReplyPlayer::play(const QList<WireEvent>& events)
{
    int textCount = 0;
    if (!goesOnAfter(textCount))
        return false;
    for (const WireEvent& event : events) {
        if (!send(event.bytes) || !rest(m_script.pace))
            return false;
        if (!event.hasText)
            continue;
        ++textCount;
        if (!goesOnAfter(textCount) || (textCount == 1 && !rest(m_script.pauseAfterFirstEvent)))
            return false;
    }
    return flush();
}

bool ReplyPlayer::goesOnAfter(int textCount)
{
    const bool hangs = m_script.hangAfterEvents == textCount;
    if (!hangs && m_script.dropAfterEvents != textCount)
        return true;
    const bool arrived = flush();
    if (hangs && arrived)
        static_cast<void>(rest(std::chrono::hours(24)));
    return false;
}

bool ReplyPlayer::send(const QByteArray& bytes)
{
    m_waiting += bytes;
    if (!m_script.writeLength)
        return flush();
    const qsizetype portion = qMax(1, *m_script.writeLength);
    qsizetype start = 0;
    for (; m_waiting.size() - start >= portion; start += portion) {
        if (m_stop.stop_requested() || !m_write(QByteArrayView(m_waiting).sliced(start, portion)))
            return false;
    }
    m_waiting.remove(0, start);
    return true;
}

bool ReplyPlayer::flush()
{
    const QByteArray bytes = std::exchange(m_waiting, {});
    return bytes.isEmpty() || (!m_stop.stop_requested() && m_write(bytes));
}

bool ReplyPlayer::rest(std::chrono::milliseconds duration)
{
    if (duration.count() == 0)
        return true;
    if (!flush())
        return false;
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any never;
    never.wait_for(lock, m_stop, duration, [] { return false; });
    return !m_stop.stop_requested();
}

} // namespace varno

#pragma once

#include "demo/Dialect.h"
#include "demo/StandInService.h"

#include <functional>
#include <stop_token>

namespace varno {

/// Sends the events of a reply, with the rests and in the portions that a script wants.
class ReplyPlayer {
public:
    /// Gives bytes to the network; false when nobody takes them any more.
    using Write = std::function<bool(QByteArrayView bytes)>;

    ReplyPlayer(Script script, Write write, std::stop_token stop);

    /// Blocks until the reply is out, or `stop`. False when the connection is to be cut.
    [[nodiscard]] bool play(const QList<WireEvent>& events);

private:
    [[nodiscard]] bool goesOnAfter(int textCount);
    [[nodiscard]] bool send(const QByteArray& bytes);
    [[nodiscard]] bool flush();
    [[nodiscard]] bool rest(std::chrono::milliseconds duration);

    Script m_script;
    Write m_write;
    std::stop_token m_stop;
    QByteArray m_waiting; ///< too little for a portion so far
};

} // namespace varno

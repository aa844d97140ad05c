#pragma once

#include "demo/Dialect.h"
#include "demo/StandInService.h"

namespace varno {

/// A reply as its script wants it, without the times.
struct ScriptedReply {
    int statusCode = 200;
    QByteArray contentType;
    QList<WireEvent> events;

    /// The reply to a request that is in order; plainly, it is `text`, the model's answer.
    static ScriptedReply compose(const Dialect& dialect, const ModelCall& call, const QString& text,
                                 const Script& script);

    /// The reply to one that is not.
    static ScriptedReply compose(const Dialect& dialect, const Refusal& refusal);
};

} // namespace varno

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace varno::bench {

/// Event streams of both services.
struct EventSamples {
    QByteArray claude;
    QByteArray gemini;
    QString origin; ///< says in words where they come from
};

/// The recordings `anthropic/*.sse` and `gemini/*.sse` in the folder that the environment variable
/// VARNO_CORPORA names; without it, streams of our own of the same shape.
EventSamples eventSamples();

/// The payload of each event in `stream`.
QList<QByteArray> payloads(const QByteArray& stream);

} // namespace varno::bench

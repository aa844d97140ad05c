#include "demo/ScriptedReply.h"

#include <algorithm>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

QStringList cut(const QString& text, std::optional<int> length)
{
    QStringList pieces;
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype wanted = length ? qMax(1, *length) : 12 + pieces.size() * 7 % 13;
        qsizetype end = qMin(start + wanted, text.size());
        if (end < text.size() && text[end - 1].isHighSurrogate())
            ++end;
        pieces.append(text.sliced(start, end - start));
        start = end;
    }
    return pieces;
}

/// Cuts a recorded reply after each empty line.
QList<WireEvent> recordedEvents(const QByteArray& body)
{
    QList<WireEvent> events;
    for (qsizetype start = 0; start < body.size();) {
        qsizetype end = body.size();
        for (const QByteArrayView emptyLine : {"\n\n", "\r\n\r\n"}) {
            const qsizetype found = body.indexOf(emptyLine, start);
            if (found >= 0)
                end = qMin(end, found + emptyLine.size());
        }
        events.append({.bytes = body.sliced(start, end - start), .hasText = true});
        start = end;
    }
    return events;
}

/// A whole event, the line of which is `length` bytes long and says nothing.
QByteArray hugeEvent(const Dialect& dialect, qint64 length)
{
    const QByteArray head = R"({"type":"ping","padding":")";
    const QByteArray tail = R"("})";
    const qint64 frame = QByteArray("data: ").size() + head.size() + tail.size();
    return dialect.event(head + QByteArray(qMax(0, length - frame), 'x') + tail);
}

/// Everything that the script wants before the second event with text.
QByteArray disturbances(const Dialect& dialect, const Script& script)
{
    QByteArray bytes;
    if (script.hugeLineLength > 0)
        bytes += hugeEvent(dialect, script.hugeLineLength);
    if (script.malformedEvent)
        bytes += dialect.event(R"({"type":"content_block_delta","delta":{"text":)");
    if (script.errorEvent)
        bytes += dialect.errorEvent();
    return bytes;
}

void disturb(QList<WireEvent>& events, const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return;
    int texts = 0;
    const auto second = std::ranges::find_if(
        events, [&texts](const WireEvent& event) { return event.hasText && ++texts == 2; });
    events.insert(second, {.bytes = bytes});
}

bool isSuccess(int statusCode)
{
    return statusCode >= 200 && statusCode < 300;
}

QList<WireEvent> eventsOf(const Dialect& dialect, const ModelCall& call, const QString& text,
                          const Script& script)
{
    if (script.body)
        return recordedEvents(*script.body);
    if (!isSuccess(script.statusCode)) {
        const QString reason = u"The script asks for status %1."_s.arg(script.statusCode);
        return {{.bytes = dialect.errorBody(script.statusCode, reason), .hasText = true}};
    }
    const QString answer = script.text ? QString::fromUtf8(*script.text) : text;
    if (!call.streamed)
        return {{.bytes = dialect.message(call, answer), .hasText = true}};

    QList<WireEvent> events = dialect.events(call, cut(answer, script.pieceLength));
    disturb(events, disturbances(dialect, script));
    if (script.crlf) {
        for (WireEvent& event : events)
            event.bytes.replace("\r\n", "\n").replace("\n", "\r\n");
    }
    return events;
}

} // namespace

ScriptedReply ScriptedReply::compose(const Dialect& dialect, const ModelCall& call,
                                     const QString& text, const Script& script)
{
    const bool ownType = script.body && !script.contentType.isEmpty();
    return {.statusCode = script.statusCode,
            .contentType = ownType
                               ? script.contentType
                               : dialect.contentType(call.streamed, isSuccess(script.statusCode)),
            .events = eventsOf(dialect, call, text, script)};
}

ScriptedReply ScriptedReply::compose(const Dialect& dialect, const Refusal& refusal)
{
    return {.statusCode = refusal.statusCode,
            .contentType = dialect.contentType(refusal.streamed, false),
            .events = {{.bytes = dialect.errorBody(refusal.statusCode, refusal.message)}}};
}

} // namespace varno

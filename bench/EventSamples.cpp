#include "bench/EventSamples.h"

#include "bench/Prose.h"
#include "core/JsonWriter.h"
#include "providers/LineSplitter.h"
#include "providers/WireFormat.h"

#include <QDir>
#include <QFile>

#include <functional>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr int eventCount = 1000;
constexpr int longTextInterval = 500;
constexpr int longTextLength = 48 * 1024;

QByteArray recordings(const QString& path)
{
    QByteArray all;
    const QDir folder(path);
    for (const QString& name : folder.entryList({u"*.sse"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            all += file.readAll() + "\n\n";
    }
    return all;
}

QByteArray claudeEvent(const QString& text)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key(u"type").string(u"content_block_delta").key(u"index").integer(0);
    writer.key(u"delta").beginObject();
    writer.key(u"type").string(u"text_delta").key(u"text").string(text);
    writer.endObject().endObject();
    return "event: content_block_delta\ndata: " + writer.text() + "\n\n";
}

QByteArray geminiEvent(const QString& text)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key(u"candidates").beginArray().beginObject();
    writer.key(u"content").beginObject().key(u"parts").beginArray();
    writer.beginObject().key(u"text").string(text).endObject();
    writer.endArray().key(u"role").string(u"model").endObject();
    writer.key(u"index").integer(0).endObject().endArray();
    writer.key(u"usageMetadata").beginObject();
    writer.key(u"promptTokenCount").integer(412).key(u"candidatesTokenCount").integer(97);
    writer.key(u"totalTokenCount").integer(509);
    writer.key(u"promptTokensDetails").beginArray().beginObject();
    writer.key(u"modality").string(u"TEXT").key(u"tokenCount").integer(412);
    writer.endObject().endArray().endObject();
    writer.key(u"modelVersion").string(u"a-model-of-that-service");
    writer.key(u"responseId").string(u"c2VkaW1lbnQgYW5kIHNpbHQ").endObject();
    return "data: " + writer.text() + "\r\n\r\n";
}

QByteArray ownStream(const std::function<QByteArray(const QString& text)>& event)
{
    Prose prose(2);
    QByteArray stream;
    for (int i = 1; i <= eventCount; ++i) {
        const int length = i % longTextInterval == 0 ? longTextLength : prose.number(4, 60);
        stream += event(prose.text(length));
    }
    return stream;
}

} // namespace

EventSamples eventSamples()
{
    const QString folder = qEnvironmentVariable("VARNO_CORPORA");
    EventSamples recorded = {.claude = recordings(folder + u"/anthropic"_s),
                             .gemini = recordings(folder + u"/gemini"_s),
                             .origin = u"recorded from the services"_s};
    if (!folder.isEmpty() && !recorded.claude.isEmpty() && !recorded.gemini.isEmpty())
        return recorded;
    return {.claude = ownStream(&claudeEvent),
            .gemini = ownStream(&geminiEvent),
            .origin = u"our own, in the shape of the services'"_s};
}

QList<QByteArray> payloads(const QByteArray& stream)
{
    QList<QByteArray> payloads;
    const auto onLine = [&payloads](std::string_view line) {
        if (const auto payload = eventPayload(line))
            payloads.append(QByteArray(payload->data(), static_cast<qsizetype>(payload->size())));
        return true;
    };
    LineSplitter splitter;
    splitter.feed({stream.data(), static_cast<std::size_t>(stream.size())}, onLine);
    splitter.finish(onLine);
    return payloads;
}

} // namespace varno::bench

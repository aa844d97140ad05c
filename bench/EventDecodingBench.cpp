#include "bench/Benches.h"
#include "bench/Samples.h"
#include "core/JsonReader.h"
#include "demo/Dialect.h"
#include "providers/EntryTagFilter.h"
#include "providers/LineSplitter.h"
#include "providers/WireFormat.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

using Decoder = std::optional<QString> (*)(json::Parser&, std::string_view payload);
using Reference = QString (*)(const QByteArray& payload);

std::string_view view(const QByteArray& bytes)
{
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

/// All files `*.sse` of a folder.
QByteArray recordings(const QDir& folder)
{
    QByteArray all;
    for (const QString& name : folder.entryList({u"*.sse"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            all += file.readAll() + "\n\n";
    }
    return all;
}

/// A reply with the library for its text.
QByteArray ownStream(const Dialect& dialect)
{
    QStringList pieces;
    const QString text = pageSample(32000);
    for (qsizetype begin = 0, length = 4; begin < text.size(); length = 4 + length * 7 % 57) {
        pieces.append(text.sliced(begin).left(length));
        begin += length;
    }
    QByteArray stream;
    for (const WireEvent& event : dialect.events(ModelCall(), pieces))
        stream += event.bytes;
    return stream;
}

/// The payload of each event in `stream`.
QList<QByteArray> payloads(const QByteArray& stream)
{
    QList<QByteArray> payloads;
    const auto onLine = [&payloads](std::string_view line) {
        if (const auto payload = eventPayload(line))
            payloads.append(QByteArray(payload->data(), static_cast<qsizetype>(payload->size())));
        return true;
    };
    LineSplitter splitter;
    splitter.feed(view(stream), onLine);
    splitter.finish(onLine);
    return payloads;
}

QString claudeReference(const QByteArray& payload)
{
    const QJsonObject event = QJsonDocument::fromJson(payload).object();
    if (event.value(u"type").toString() != u"content_block_delta")
        return {};
    return event.value(u"delta").toObject().value(u"text").toString();
}

QString geminiReference(const QByteArray& payload)
{
    const QJsonObject chunk = QJsonDocument::fromJson(payload).object();
    const QJsonObject candidate = chunk.value(u"candidates").toArray().first().toObject();
    const QJsonArray parts = candidate.value(u"content").toObject().value(u"parts").toArray();
    return parts.first().toObject().value(u"text").toString();
}

/// A comparison counts only between decoders that find the same text.
bool agree(const QList<QByteArray>& payloads, Decoder ours, Reference reference)
{
    json::Parser parser;
    return std::all_of(payloads.begin(), payloads.end(), [&](const QByteArray& payload) {
        return ours(parser, view(payload)).value_or(QString()) == reference(payload);
    });
}

template <typename Decode>
void decodeAll(benchmark::State& state, const QList<QByteArray>& payloads, Decode decode)
{
    for ([[maybe_unused]] auto iteration : state) {
        for (const QByteArray& payload : payloads)
            benchmark::DoNotOptimize(decode(payload));
    }
    state.SetItemsProcessed(state.iterations() * payloads.size());
}

/// All that happens to the bytes of an answer until they are text of its entry.
void decodeWholePath(benchmark::State& state, const QByteArray& stream, Decoder decode)
{
    constexpr std::size_t received = 16384; // what the transport hands over at once, at most
    json::Parser parser;
    for ([[maybe_unused]] auto iteration : state) {
        LineSplitter splitter;
        EntryTagFilter filter;
        filter.filter(u"<entry>"_s);
        const auto onLine = [&](std::string_view line) {
            const auto payload = eventPayload(line);
            if (const auto text = payload ? decode(parser, *payload) : std::nullopt)
                benchmark::DoNotOptimize(filter.filter(*text));
            return true;
        };
        for (std::string_view rest = view(stream); !rest.empty();
             rest.remove_prefix(std::min(rest.size(), received)))
            splitter.feed(rest.substr(0, received), onLine);
        splitter.finish(onLine);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
}

/// `folder` is where its recordings are, in the one that VARNO_CORPORA names.
void addService(Table& table, const std::string& name, const QString& folder,
                const Dialect& dialect, Decoder ours, Reference reference)
{
    const QString corpora = qEnvironmentVariable("VARNO_CORPORA");
    QByteArray stream =
        corpora.isEmpty() ? QByteArray() : recordings(QDir(corpora).filePath(folder));
    const bool isRecorded = !stream.isEmpty();
    if (!isRecorded)
        stream = ownStream(dialect);
    benchmark::AddCustomContext(name + " events", isRecorded ? "recorded from the service"
                                                             : "our own, of the same shape");

    const QList<QByteArray> lines = payloads(stream);
    const std::string decoding = "events/" + name;
    const std::string path = "path/" + name;
    benchmark::RegisterBenchmark(decoding.c_str(), [=](benchmark::State& state) {
        json::Parser parser;
        decodeAll(state, lines, [&](const QByteArray& line) { return ours(parser, view(line)); });
    });
    benchmark::RegisterBenchmark((decoding + "/QJsonDocument").c_str(),
                                 [=](benchmark::State& state) {
                                     if (agree(lines, ours, reference))
                                         decodeAll(state, lines, reference);
                                     else
                                         state.SkipWithError("the decoders do not agree");
                                 });
    benchmark::RegisterBenchmark(path.c_str(), decodeWholePath, stream, ours);

    table.add({.name = name + " events decoded, against QJsonDocument",
               .measure = Measure::itemRate,
               .ours = decoding,
               .reference = decoding + "/QJsonDocument",
               .wanted = ratioAtLeast(8)});
    table.add({.name = name + ", from received bytes to text of the entry",
               .measure = Measure::byteRate,
               .ours = path});
}

} // namespace

void addEventDecoding(Table& table)
{
    addService(table, "Claude", u"anthropic"_s, claudeDialect(), claudeEventText, claudeReference);
    addService(table, "Gemini", u"gemini"_s, geminiDialect(), geminiEventText, geminiReference);
}

} // namespace varno::bench

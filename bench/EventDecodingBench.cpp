#include "bench/Benches.h"
#include "bench/EventSamples.h"
#include "core/JsonReader.h"
#include "providers/EntryTagFilter.h"
#include "providers/LineSplitter.h"
#include "providers/WireFormat.h"

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

void decodeOurs(benchmark::State& state, const QList<QByteArray>& payloads, Decoder decode)
{
    json::Parser parser;
    for ([[maybe_unused]] auto iteration : state) {
        for (const QByteArray& payload : payloads)
            benchmark::DoNotOptimize(decode(parser, view(payload)));
    }
    state.SetItemsProcessed(state.iterations() * payloads.size());
}

void decodeReference(benchmark::State& state, const QList<QByteArray>& payloads, Decoder ours,
                     Reference decode)
{
    if (!agree(payloads, ours, decode))
        state.SkipWithError("the decoders do not agree");
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

void addService(Table& table, const std::string& name, const QByteArray& stream, Decoder ours,
                Reference reference)
{
    const QList<QByteArray> lines = payloads(stream);
    const std::string decoding = "events/" + name;
    const std::string path = "path/" + name;
    benchmark::RegisterBenchmark(decoding.c_str(), decodeOurs, lines, ours);
    benchmark::RegisterBenchmark((decoding + "/QJsonDocument").c_str(), decodeReference, lines,
                                 ours, reference);
    benchmark::RegisterBenchmark(path.c_str(), decodeWholePath, stream, ours);

    table.add({.name = name + " events decoded, against QJsonDocument",
               .measure = Measure::itemRate,
               .ours = decoding,
               .reference = decoding + "/QJsonDocument",
               .wanted = Bound{.kind = Bound::Kind::atLeast, .ratio = 8}});
    table.add({.name = name + ", from received bytes to text of the entry",
               .measure = Measure::byteRate,
               .ours = path});
}

} // namespace

void addEventDecoding(Table& table, const EventSamples& samples)
{
    addService(table, "Claude", samples.claude, claudeEventText, claudeReference);
    addService(table, "Gemini", samples.gemini, geminiEventText, geminiReference);
}

} // namespace varno::bench

#include "bench/Benches.h"
#include "bench/Samples.h"
#include "core/SessionCodec.h"

#include <QJsonDocument>

namespace varno::bench {
namespace {

const QByteArray& sampleBytes()
{
    static const QByteArray bytes = [] {
        QByteArray encoded = encodeSessions(historySample());
        encoded.reserve(encoded.size() + 64); // as it comes out of readFile
        return encoded;
    }();
    return bytes;
}

void decodeOurs(benchmark::State& state)
{
    const QByteArray& bytes = sampleBytes();
    for ([[maybe_unused]] auto iteration : state) {
        const auto sessions = decodeSessions(bytes);
        if (!sessions)
            state.SkipWithError("the history does not decode");
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void decodeReference(benchmark::State& state)
{
    const QByteArray& bytes = sampleBytes();
    for ([[maybe_unused]] auto iteration : state) {
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        if (!document.isArray())
            state.SkipWithError("the history does not decode");
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void encode(benchmark::State& state)
{
    const QList<Session> sessions = historySample();
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(encodeSessions(sessions));
    state.SetBytesProcessed(state.iterations() * sampleBytes().size());
}

} // namespace

void addHistory(Table& table)
{
    benchmark::RegisterBenchmark("history/decode", decodeOurs);
    benchmark::RegisterBenchmark("history/decode/QJsonDocument", decodeReference);
    benchmark::RegisterBenchmark("history/encode", encode);

    table.add({.name = "history of 4 MB decoded, against QJsonDocument",
               .measure = Measure::time,
               .ours = "history/decode",
               .reference = "history/decode/QJsonDocument",
               .wanted = Bound{.kind = Bound::Kind::atMost, .ratio = 0.125}});
    table.add(
        {.name = "the same history encoded", .measure = Measure::time, .ours = "history/encode"});
}

} // namespace varno::bench

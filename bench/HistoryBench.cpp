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
    for ([[maybe_unused]] auto iteration : state)
        if (!decodeSessions(sampleBytes()))
            state.SkipWithError("the history does not decode");
}

void decodeReference(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state)
        if (!QJsonDocument::fromJson(sampleBytes()).isArray())
            state.SkipWithError("the history does not decode");
}

void encode(benchmark::State& state)
{
    const QList<Session> sessions = historySample();
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(encodeSessions(sessions));
}

} // namespace

void addHistory(Table& table)
{
    benchmark::RegisterBenchmark("history/decode", decodeOurs);
    benchmark::RegisterBenchmark("history/decode/QJsonDocument", decodeReference);
    benchmark::RegisterBenchmark("history/encode", encode);

    table.add({.name = "history of 4 MB decoded, against QJsonDocument",
               .ours = "history/decode",
               .reference = "history/decode/QJsonDocument",
               .wanted = ratioAtMost(0.125)});
    table.add({.name = "the same history encoded", .ours = "history/encode"});
}

} // namespace varno::bench

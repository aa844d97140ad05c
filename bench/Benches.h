#pragma once

#include "bench/Table.h"

namespace varno::bench {

// Each subject registers its benchmarks, and the rows of the table that their figures go to.

void addEventDecoding(Table& table);
void addFirstWord(Table& table);
void addHistory(Table& table);
void addOperations(Table& table);
void addPage(Table& table);
void addReading(Table& table);
void addScreen(Table& table);
void addStreaming(Table& table);

/// Registers a benchmark that times its iterations itself: `run` is a function and its arguments.
template <typename... Run>
auto* addTimed(const std::string& name, int iterations, Run... run)
{
    return benchmark::RegisterBenchmark(name.c_str(), run...)
        ->UseManualTime()
        ->Iterations(iterations);
}

} // namespace varno::bench

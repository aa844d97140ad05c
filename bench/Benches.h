#pragma once

#include "bench/Table.h"

namespace varno::bench {

// Each subject registers its benchmarks, and the rows of the table that their figures go to.

void addEventDecoding(Table& table);
void addFinding(Table& table);
void addHistory(Table& table);
void addPage(Table& table);
void addReading(Table& table);
void addScreen(Table& table);
void addStart(Table& table);
void addStreaming(Table& table);

} // namespace varno::bench

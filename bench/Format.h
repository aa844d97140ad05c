#pragma once

#include <array>
#include <cstdio>
#include <string>

namespace varno::bench {

/// A line of a table: name, ours, reference, ratio, wanted, verdict.
inline constexpr const char* columns = "%-52s %14s %14s %8s %11s  %s\n";

template <typename... Values>
std::string format(const char* pattern, Values... values)
{
    std::array<char, 200> text = {};
    std::snprintf(text.data(), text.size(), pattern, values...);
    return text.data();
}

} // namespace varno::bench

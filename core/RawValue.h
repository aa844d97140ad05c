#pragma once

#include <QLatin1StringView>
#include <QString>

#include <algorithm>
#include <array>
#include <optional>

namespace varno {

/// The cases of an enumeration in their order, each with the string it is stored as. Specialised
/// beside each enumeration that has stored strings.
template <typename Case>
struct RawCase {
    Case value;
    QLatin1StringView raw;
};

template <typename Case>
struct RawValues;

template <typename Case>
QString rawValue(Case value)
{
    const auto& cases = RawValues<Case>::cases;
    return std::find_if(cases.begin(), cases.end(),
                        [&](const RawCase<Case>& known) { return known.value == value; })
        ->raw;
}

/// The case stored as exactly `raw`.
template <typename Case>
std::optional<Case> fromRawValue(QStringView raw)
{
    for (const RawCase<Case>& known : RawValues<Case>::cases) {
        if (known.raw == raw)
            return known.value;
    }
    return std::nullopt;
}

} // namespace varno

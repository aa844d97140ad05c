#pragma once

#include <QString>

#include <variant>

namespace varno {

/// Why an operation failed, in words fit to show. Never holds a key, nor a URL that could carry
/// one.
struct Failure {
    QString description;

    bool operator==(const Failure&) const = default;
};

/// What an operation came to: its value, or why there is none.
template <typename Value, typename Error = Failure>
using Result = std::variant<Value, Error>;

} // namespace varno

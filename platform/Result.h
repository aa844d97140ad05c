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

template <typename Value>
using Result = std::variant<Value, Failure>;

} // namespace varno

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <simdjson.h>

#include <optional>
#include <string_view>

namespace varno::json {

// Typed reading of records: a value of the wrong type makes the whole record unreadable, unknown
// members do not count.

using Value = simdjson::dom::element;
using Object = simdjson::dom::object;
using Array = simdjson::dom::array;

/// The memory that values are read into.
class Parser : public simdjson::dom::parser {};

inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Converts all of `utf8`: QString::fromUtf8 would drop a U+FEFF at the beginning.
inline QString toQString(std::string_view utf8)
{
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    if (utf8.starts_with(byteOrderMark))
        text.prepend(QChar(QChar::ByteOrderMark));
    return text;
}

/// The one JSON value that `bytes` are, with or without a byte-order mark; nothing when they are
/// not valid. It is valid until `parser` reads the next one. A number is not refused for its size.
std::optional<Value> parse(Parser& parser, QByteArrayView bytes);

/// The same without a copy of `bytes`, if they have room to spare behind their end.
std::optional<Value> parse(Parser& parser, const QByteArray& bytes);

/// `value` as an Object, Array, std::string_view or number.
template <typename Type>
std::optional<Type> as(Value value)
{
    Type typed;
    if (value.get(typed) != simdjson::SUCCESS)
        return std::nullopt;
    return typed;
}

inline std::optional<Value> member(Object object, std::string_view name)
{
    Value value;
    if (object.at_key(name).get(value) != simdjson::SUCCESS)
        return std::nullopt;
    return value;
}

/// A member that may be missing or null, but not of another type.
template <typename Type>
struct OptionalMember {
    bool valid = true;
    std::optional<Type> value;
};

template <typename Type>
OptionalMember<Type> optionalMember(Object object, std::string_view name)
{
    const std::optional<Value> found = member(object, name);
    if (!found || found->is_null())
        return {};
    const std::optional<Type> typed = as<Type>(*found);
    return {.valid = typed.has_value(), .value = typed};
}

template <typename Type>
std::optional<Type> requiredMember(Object object, std::string_view name)
{
    const std::optional<Value> found = member(object, name);
    return found ? as<Type>(*found) : std::nullopt;
}

inline std::optional<QStringList> strings(Array array)
{
    QStringList list;
    for (const Value element : array) {
        const auto text = as<std::string_view>(element);
        if (!text)
            return std::nullopt;
        list.append(toQString(*text));
    }
    return list;
}

} // namespace varno::json

#include "core/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace varno {
namespace {

template <typename Number>
QByteArray shortest(Number value)
{
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end - digits.data()};
}

} // namespace

JsonWriter& JsonWriter::key(QStringView name)
{
    separate();
    quote(name);
    m_text += ':';
    m_needsComma = false;
    return *this;
}

JsonWriter& JsonWriter::string(QStringView value)
{
    separate();
    quote(value);
    return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t value)
{
    separate();
    m_text += shortest(value);
    return *this;
}

JsonWriter& JsonWriter::real(double value)
{
    separate();
    const QByteArray digits = shortest(value);
    m_text += digits;
    // Without a point it would read as an integer, which may have no room for it.
    if (std::none_of(digits.begin(), digits.end(), [](char c) { return c == '.' || c == 'e'; }))
        m_text += ".0";
    return *this;
}

JsonWriter& JsonWriter::boolean(bool value)
{
    separate();
    m_text += value ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::open(char bracket)
{
    separate();
    m_text += bracket;
    m_needsComma = false;
    return *this;
}

JsonWriter& JsonWriter::close(char bracket)
{
    m_text += bracket;
    m_needsComma = true;
    return *this;
}

void JsonWriter::separate()
{
    if (m_needsComma)
        m_text += ',';
    m_needsComma = true;
}

void JsonWriter::quote(QStringView text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    m_text += '"';
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            m_text += '\\';
            m_text += c;
        } else if (byte < 0x20) {
            m_text += "\\u00";
            m_text += digits[byte >> 4U];
            m_text += digits[byte & 0xFU];
        } else {
            m_text += c;
        }
    }
    m_text += '"';
}

} // namespace varno

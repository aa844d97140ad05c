#pragma once

#include <QByteArray>
#include <QStringView>

#include <cstdint>

namespace varno {

/// Writes JSON text, compact, in the order of the calls. The caller keeps the nesting balanced.
///
/// QJsonDocument is not exact enough for files that must read back: it drops the sign of zero,
/// writes numbers from 2^64 on as integers, and lone surrogates as escapes that strict readers
/// refuse.
class JsonWriter {
public:
    JsonWriter& beginObject() { return open('{'); }
    JsonWriter& endObject() { return close('}'); }
    JsonWriter& beginArray() { return open('['); }
    JsonWriter& endArray() { return close(']'); }

    JsonWriter& key(QStringView name);
    JsonWriter& string(QStringView value); ///< a lone surrogate becomes a replacement
    JsonWriter& integer(std::int64_t value);
    JsonWriter& real(double value); ///< finite; reads back to the last bit
    JsonWriter& boolean(bool value);

    [[nodiscard]] const QByteArray& text() const { return m_text; }

private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    void separate();
    void quote(QStringView text);

    QByteArray m_text;
    bool m_needsComma = false;
};

} // namespace varno

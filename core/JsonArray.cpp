#include "core/JsonArray.h"

#include "core/JsonReader.h"

#include <cstdio>
#include <cstdlib>

namespace varno {

std::optional<QStringList> parseJSONArray(const QString& text)
{
    const qsizetype first = text.indexOf(u'[');
    const qsizetype last = text.lastIndexOf(u']');
    if (first < 0 || last < 0)
        return std::nullopt;
    if (last < first) {
        std::fputs("varno: parseJSONArray: the last \"]\" stands before the first \"[\"\n", stderr);
        std::abort();
    }
    const QByteArray array = QStringView(text).sliced(first, last - first + 1).toUtf8();
    json::Parser parser;
    const auto value = json::parse(parser, array);
    const auto elements = value ? json::as<json::Array>(*value) : std::nullopt;
    return elements ? json::strings(*elements) : std::nullopt;
}

std::optional<QStringList> arrayIn(const QString& reply)
{
    return reply.lastIndexOf(u']') < reply.indexOf(u'[') ? std::nullopt : parseJSONArray(reply);
}

} // namespace varno

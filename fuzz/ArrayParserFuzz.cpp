#include "core/JsonArray.h"
#include "core/JsonWriter.h"
#include "fuzz/Check.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// The list of sections in what a model answered. The input is UTF-8, or UTF-16 with lone surrogates
// and all when it begins with the little-endian byte-order mark.

using namespace varno;

namespace {

using namespace Qt::StringLiterals;

QString answer(const char* data, std::size_t size)
{
    const QByteArray bytes(data, static_cast<qsizetype>(size));
    if (!bytes.startsWith("\xFF\xFE"))
        return QString::fromUtf8(bytes);
    QString text((bytes.size() - 2) / 2, u'\0');
    std::memcpy(text.data(), bytes.constData() + 2, static_cast<std::size_t>(text.size()) * 2);
    return text;
}

/// What parseJSONArray answers by ending the process.
bool endsProcess(const QString& text)
{
    return text.contains(u'[') && text.contains(u']') &&
           text.lastIndexOf(u']') < text.indexOf(u'[');
}

QString written(const QStringList& strings)
{
    JsonWriter writer;
    writer.beginArray();
    for (const QString& string : strings)
        writer.string(string);
    writer.endArray();
    return QString::fromUtf8(writer.text());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = answer(reinterpret_cast<const char*>(data), size);
    if (endsProcess(text))
        return 0;
    const auto strings = parseJSONArray(text);
    fuzz::check(parseJSONArray(u" \r\n\t"_s + text + u"\n "_s) == strings,
                "white space around an answer makes no difference");
    fuzz::check(parseJSONArray(u"```json\n"_s + text + u"\n```"_s) == strings,
                "words around a list make no difference");
    if (strings)
        fuzz::check(parseJSONArray(written(*strings)) == strings, "a list written reads back");
    return 0;
}

#pragma once

#include "core/JsonWriter.h"

namespace varno {

/// `text` as a JSON string.
inline QByteArray quoted(QStringView text)
{
    return JsonWriter().string(text).text();
}

/// About as many as a model would count.
inline QByteArray tokenCount(QStringView text)
{
    return QByteArray::number(text.size() / 4 + 1);
}

} // namespace varno

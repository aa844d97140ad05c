#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace varno {

/// The array of strings that `text` holds between its first "[" and its last "]"; nothing when
/// there is no such array. A "]" before the "[" ends the process, with a message on the console.
[[nodiscard]] std::optional<QStringList> parseJSONArray(const QString& text);

/// The same for what a model wrote, which may hold its brackets in any order.
[[nodiscard]] std::optional<QStringList> arrayIn(const QString& reply);

} // namespace varno

#pragma once

#include <QByteArray>
#include <QStringList>

#include <optional>

namespace varno {

// The text of INI files in the dialect of QSettings, with values as lists of words. Only the group
// "General" is looked into, for keys of ASCII letters, digits and underscores; whatever else is in
// the text stays as it is, byte for byte. All functions take linear time and any text.

/// The value of `key` as it is written, nothing when there is none.
std::optional<QByteArray> iniValue(QByteArrayView text, QByteArrayView key);

/// `text` with `value`, as it is to be written, for `key`; without the key when it is nothing.
QByteArray withIniValue(QByteArrayView text, QByteArrayView key,
                        const std::optional<QByteArray>& value);

/// What a value says, a single word as a list of one. Nothing if any of it is no string.
std::optional<QStringList> iniWords(QByteArrayView value);

/// The value that says `words`.
QByteArray iniValueOf(const QStringList& words);

} // namespace varno

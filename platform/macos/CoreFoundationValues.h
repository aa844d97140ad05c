#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace varno {

struct CFReleaser {
    void operator()(CFTypeRef value) const { CFRelease(value); }
};

/// Releases what a function with “Create” or “Copy” in its name has returned.
template <typename Reference>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;

[[nodiscard]] CFOwned<CFStringRef> cfString(const QString& text);
[[nodiscard]] CFOwned<CFDataRef> cfData(const QByteArray& bytes);
[[nodiscard]] CFOwned<CFArrayRef> cfArray(const QStringList& texts);

/// Retains what it is given.
using CFEntries = std::vector<std::pair<CFStringRef, CFTypeRef>>;
[[nodiscard]] CFOwned<CFDictionaryRef> cfDictionary(const CFEntries& entries);

// Nothing for a value of another type, or for none.
[[nodiscard]] std::optional<QString> stringOf(CFTypeRef value);
[[nodiscard]] std::optional<QByteArray> bytesOf(CFTypeRef value);
[[nodiscard]] std::optional<bool> booleanOf(CFTypeRef value);
[[nodiscard]] std::optional<int> integerOf(CFTypeRef value);
/// Nor for an array that holds anything else.
[[nodiscard]] std::optional<QStringList> stringsOf(CFTypeRef value);
[[nodiscard]] QStringList keysOf(CFDictionaryRef dictionary);

} // namespace varno

#include "platform/macos/CoreFoundationValues.h"

namespace varno {

CFOwned<CFStringRef> cfString(const QString& text)
{
    return CFOwned<CFStringRef>(CFStringCreateWithCharacters(
        nullptr, reinterpret_cast<const UniChar*>(text.utf16()), text.size()));
}

CFOwned<CFDataRef> cfData(const QByteArray& bytes)
{
    return CFOwned<CFDataRef>(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.constData()), bytes.size()));
}

CFOwned<CFArrayRef> cfArray(const QStringList& texts)
{
    std::vector<CFOwned<CFStringRef>> owned;
    std::vector<const void*> values;
    for (const QString& text : texts)
        values.push_back(owned.emplace_back(cfString(text)).get());
    return CFOwned<CFArrayRef>(CFArrayCreate(
        nullptr, values.data(), static_cast<CFIndex>(values.size()), &kCFTypeArrayCallBacks));
}

CFOwned<CFDictionaryRef> cfDictionary(const CFEntries& entries)
{
    std::vector<const void*> keys;
    std::vector<const void*> values;
    for (const auto& [key, value] : entries) {
        keys.push_back(key);
        values.push_back(value);
    }
    return CFOwned<CFDictionaryRef>(
        CFDictionaryCreate(nullptr, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
                           &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

std::optional<QString> stringOf(CFTypeRef value)
{
    if (!value || CFGetTypeID(value) != CFStringGetTypeID())
        return std::nullopt;
    const auto* const string = static_cast<CFStringRef>(value);
    QString text(CFStringGetLength(string), Qt::Uninitialized);
    CFStringGetCharacters(string, {.location = 0, .length = text.size()},
                          reinterpret_cast<UniChar*>(text.data()));
    return text;
}

std::optional<QByteArray> bytesOf(CFTypeRef value)
{
    if (!value || CFGetTypeID(value) != CFDataGetTypeID())
        return std::nullopt;
    const auto* const data = static_cast<CFDataRef>(value);
    return QByteArray(reinterpret_cast<const char*>(CFDataGetBytePtr(data)), CFDataGetLength(data));
}

std::optional<bool> booleanOf(CFTypeRef value)
{
    if (!value || CFGetTypeID(value) != CFBooleanGetTypeID())
        return std::nullopt;
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

std::optional<int> integerOf(CFTypeRef value)
{
    SInt32 number = 0;
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt32Type, &number))
        return std::nullopt;
    return number;
}

std::optional<QStringList> stringsOf(CFTypeRef value)
{
    if (!value || CFGetTypeID(value) != CFArrayGetTypeID())
        return std::nullopt;
    const auto* const array = static_cast<CFArrayRef>(value);
    QStringList texts;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        const std::optional<QString> text = stringOf(CFArrayGetValueAtIndex(array, i));
        if (!text)
            return std::nullopt;
        texts << *text;
    }
    return texts;
}

QStringList keysOf(CFDictionaryRef dictionary)
{
    std::vector<const void*> keys(static_cast<std::size_t>(CFDictionaryGetCount(dictionary)));
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), nullptr);
    QStringList names;
    for (const CFTypeRef key : keys)
        names << stringOf(key).value_or(QString());
    return names;
}

} // namespace varno

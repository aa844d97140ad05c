#include "tests/macos/Imitation.h"

#include <atomic>
#include <cstring>
#include <variant>

namespace {

struct Value {
    using List = std::vector<CFTypeRef>;
    using Table = std::vector<std::pair<CFTypeRef, CFTypeRef>>;

    std::variant<QString, QByteArray, SInt32, bool, List, Table> content;
    mutable std::atomic<int> references = 1;
};

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a service has a state
std::atomic<int> living = 0;

template <typename Reference, typename Content>
Reference make(Content content)
{
    ++living;
    return reinterpret_cast<Reference>(new Value{std::move(content)});
}

const Value& valueOf(const void* reference)
{
    return *static_cast<const Value*>(reference);
}

template <typename Content>
const Content& contentOf(const void* reference)
{
    return std::get<Content>(valueOf(reference).content);
}

template <typename Content>
CFTypeID typeOf()
{
    return decltype(Value::content)(Content()).index() + 1;
}

CFTypeRef retained(CFTypeRef value)
{
    return value ? CFRetain(value) : nullptr;
}

using Domain = std::map<QString, CFTypeRef>;

void put(Domain& domain, const QString& key, CFTypeRef value)
{
    const CFTypeRef before = std::exchange(domain[key], retained(value));
    if (before)
        CFRelease(before);
}

void clear(Domain& domain)
{
    for (const auto& [key, value] : std::exchange(domain, {}))
        if (value)
            CFRelease(value);
}

struct Observer {
    void* observer;
    CFNotificationCallback callback;
    CFStringRef name;
};
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a service has a state
std::vector<Observer> observers;

} // namespace

const CFBooleanRef kCFBooleanTrue = make<CFBooleanRef>(true);
const CFBooleanRef kCFBooleanFalse = make<CFBooleanRef>(false);
struct CFArrayCallBacks {};
struct CFDictionaryKeyCallBacks {};
struct CFDictionaryValueCallBacks {};
const CFArrayCallBacks kCFTypeArrayCallBacks;
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
const CFStringRef kCFPreferencesCurrentUser = CFSTR("current user");
const CFStringRef kCFPreferencesAnyHost = CFSTR("any host");

CFTypeRef CFRetain(CFTypeRef value)
{
    ++valueOf(value).references;
    return value;
}

void CFRelease(CFTypeRef value)
{
    if (--valueOf(value).references > 0)
        return;
    if (const auto* list = std::get_if<Value::List>(&valueOf(value).content))
        for (const CFTypeRef element : *list)
            CFRelease(element);
    if (const auto* table = std::get_if<Value::Table>(&valueOf(value).content))
        for (const auto& [key, entry] : *table) {
            CFRelease(key);
            CFRelease(entry);
        }
    delete &valueOf(value);
    --living;
}

#define IMITATED_TYPE(Function, Content)                                                           \
    CFTypeID Function()                                                                            \
    {                                                                                              \
        return typeOf<Content>();                                                                  \
    }
IMITATED_TYPE(CFStringGetTypeID, QString)
IMITATED_TYPE(CFDataGetTypeID, QByteArray)
IMITATED_TYPE(CFNumberGetTypeID, SInt32)
IMITATED_TYPE(CFBooleanGetTypeID, bool)
IMITATED_TYPE(CFArrayGetTypeID, Value::List)
IMITATED_TYPE(CFDictionaryGetTypeID, Value::Table)

CFTypeID CFGetTypeID(CFTypeRef value)
{
    return valueOf(value).content.index() + 1;
}

CFStringRef __CFStringMakeConstantString(const char* text)
{
    static std::mutex mutex;
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a service has a state
    static auto& all = *new std::map<QString, CFStringRef>; // for ever
    const std::scoped_lock lock(mutex);
    const QString string = QString::fromLatin1(text);
    const auto known = all.find(string);
    if (known != all.end())
        return known->second;
    const auto* const made = make<CFStringRef>(string);
    --living;
    return all[string] = made;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex count)
{
    return make<CFStringRef>(QString(reinterpret_cast<const QChar*>(characters), count));
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return contentOf<QString>(string).size();
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* characters)
{
    std::memcpy(characters, contentOf<QString>(string).utf16() + range.location,
                static_cast<std::size_t>(range.length) * sizeof *characters);
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length)
{
    return make<CFDataRef>(QByteArray(reinterpret_cast<const char*>(bytes), length));
}

CFIndex CFDataGetLength(CFDataRef data)
{
    return contentOf<QByteArray>(data).size();
}

const UInt8* CFDataGetBytePtr(CFDataRef data)
{
    return reinterpret_cast<const UInt8*>(contentOf<QByteArray>(data).constData());
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType, void* value)
{
    *static_cast<SInt32*>(value) = contentOf<SInt32>(number);
    return 1;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean)
{
    return contentOf<bool>(boolean) ? 1 : 0;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks*)
{
    Value::List list;
    for (CFIndex i = 0; i < count; ++i)
        list.push_back(CFRetain(values[i]));
    return make<CFArrayRef>(list);
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return static_cast<CFIndex>(contentOf<Value::List>(array).size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    return contentOf<Value::List>(array).at(static_cast<std::size_t>(index));
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks*,
                                   const CFDictionaryValueCallBacks*)
{
    Value::Table table;
    for (CFIndex i = 0; i < count; ++i)
        table.emplace_back(CFRetain(keys[i]), CFRetain(values[i]));
    return make<CFDictionaryRef>(table);
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary)
{
    return static_cast<CFIndex>(contentOf<Value::Table>(dictionary).size());
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key)
{
    for (const auto& [name, value] : contentOf<Value::Table>(dictionary))
        if (contentOf<QString>(name) == contentOf<QString>(key))
            return value;
    return nullptr;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void**)
{
    for (const auto& [key, value] : contentOf<Value::Table>(dictionary))
        *keys++ = key;
}

CFNotificationCenterRef CFNotificationCenterGetDistributedCenter()
{
    return nullptr;
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void* observer,
                                     CFNotificationCallback callback, CFStringRef name, const void*,
                                     CFNotificationSuspensionBehavior)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): a callback may change it
    observers.push_back({const_cast<void*>(observer), callback, name});
}

void CFNotificationCenterRemoveObserver(CFNotificationCenterRef, const void* observer,
                                        CFStringRef name, const void*)
{
    std::erase_if(observers, [&](const Observer& each) {
        return each.observer == observer && each.name == name;
    });
}

CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef, CFStringRef, CFStringRef, CFStringRef)
{
    auto& store = varno::imitation::preferences();
    const std::scoped_lock lock(store.mutex);
    auto all = store.values;
    for (const auto& [key, value] : store.pending)
        all[key] = value;
    Value::Table table;
    for (const auto& [key, value] : all)
        if (value)
            table.emplace_back(make<CFTypeRef>(key), CFRetain(value));
    return make<CFDictionaryRef>(table);
}

CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef, CFStringRef, CFStringRef)
{
    auto& store = varno::imitation::preferences();
    const std::scoped_lock lock(store.mutex);
    const auto& name = contentOf<QString>(key);
    const auto pending = store.pending.find(name);
    if (pending != store.pending.end())
        return retained(pending->second);
    const auto found = store.values.find(name);
    return found == store.values.end() ? nullptr : retained(found->second);
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application)
{
    using namespace varno::imitation;
    const std::scoped_lock lock(preferences().mutex);
    preferences().calls << described(application) + u' ' + described(key) + u' ' + described(value);
    put(preferences().pending, contentOf<QString>(key), value);
}

Boolean CFPreferencesAppSynchronize(CFStringRef)
{
    auto& store = varno::imitation::preferences();
    const std::scoped_lock lock(store.mutex);
    if (!store.isWritable)
        return 0;
    for (const auto& [key, value] : store.pending)
        put(store.values, key, value);
    clear(store.pending);
    return 1;
}

namespace varno::imitation {

int livingValues()
{
    return living;
}

CFTypeRef number(int value)
{
    return make<CFTypeRef>(SInt32(value));
}

QString described(CFTypeRef value)
{
    if (!value)
        return QStringLiteral("(none)");
    const auto& content = valueOf(value).content;
    if (const auto* string = std::get_if<QString>(&content))
        return *string;
    if (const auto* bytes = std::get_if<QByteArray>(&content))
        return QStringLiteral("bytes:") + QString::fromLatin1(bytes->toHex());
    if (const auto* whole = std::get_if<SInt32>(&content))
        return QString::number(*whole);
    if (const auto* boolean = std::get_if<bool>(&content))
        return *boolean ? QStringLiteral("true") : QStringLiteral("false");
    QStringList parts;
    if (const auto* list = std::get_if<Value::List>(&content))
        for (const CFTypeRef element : *list)
            parts << described(element);
    else
        for (const auto& [key, entry] : std::get<Value::Table>(content))
            parts << described(key) + u'=' + described(entry);
    return u'[' + parts.join(u' ') + u']';
}

void Layout::change(const QHash<int, QString>& newCharacters)
{
    characters = newCharacters;
    for (const Observer& each : std::vector(observers))
        if (each.name == kTISNotifySelectedKeyboardInputSourceChanged)
            each.callback(nullptr, each.observer, each.name, nullptr, nullptr);
}

Preferences& preferences()
{
    static Preferences store;
    return store;
}

void Preferences::set(const QString& key, CFTypeRef value)
{
    const std::scoped_lock lock(mutex);
    put(values, key, value);
}

void Preferences::reset()
{
    calls.clear();
    clear(values);
    clear(pending);
    isWritable = true;
}

} // namespace varno::imitation

#include "platform/macos/DefaultsPreferencesStore.h"

#include "platform/macos/CoreFoundationValues.h"

#include <utility>

namespace varno {
namespace {

CFOwned<CFTypeRef> cfValue(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return CFOwned<CFTypeRef>(CFRetain(value.toBool() ? kCFBooleanTrue : kCFBooleanFalse));
    case QMetaType::QString:
        return cfString(value.toString());
    case QMetaType::QStringList:
        return cfArray(value.toStringList());
    default:
        return nullptr;
    }
}

QVariant valueOf(CFTypeRef value)
{
    if (const auto boolean = booleanOf(value))
        return *boolean;
    if (const auto string = stringOf(value))
        return *string;
    if (const auto strings = stringsOf(value))
        return *strings;
    return {};
}

template <typename Value>
std::optional<Value> typed(const QVariant& value)
{
    return value.typeId() == QMetaType::fromType<Value>().id() ? std::optional(value.value<Value>())
                                                               : std::nullopt;
}

} // namespace

DefaultsPreferencesStore::DefaultsPreferencesStore(QString domain)
    : m_domain(std::move(domain))
    , m_values(read())
{
}

bool DefaultsPreferencesStore::contains(const QString& key) const
{
    return m_values.contains(key);
}

std::optional<bool> DefaultsPreferencesStore::boolean(const QString& key) const
{
    return typed<bool>(m_values.value(key));
}

std::optional<QString> DefaultsPreferencesStore::string(const QString& key) const
{
    return typed<QString>(m_values.value(key));
}

std::optional<QStringList> DefaultsPreferencesStore::stringArray(const QString& key) const
{
    return typed<QStringList>(m_values.value(key));
}

void DefaultsPreferencesStore::setBoolean(const QString& key, bool value)
{
    change(key, [value](const QVariant&) { return value; });
}

void DefaultsPreferencesStore::setString(const QString& key, const QString& value)
{
    change(key, [value](const QVariant&) { return value; });
}

void DefaultsPreferencesStore::setStringArray(const QString& key, const QStringList& value)
{
    change(key, [value](const QVariant&) { return value; });
}

void DefaultsPreferencesStore::editStringArray(const QString& key, const ListEdit& edit)
{
    change(key, [edit](const QVariant& value) {
        return edit(typed<QStringList>(value).value_or(QStringList()));
    });
}

void DefaultsPreferencesStore::remove(const QString& key)
{
    if (contains(key))
        change(key, [](const QVariant&) { return QVariant(); });
}

void DefaultsPreferencesStore::refresh()
{
    m_lane.add([this, number = m_changes](const std::stop_token&) {
        CFPreferencesAppSynchronize(cfString(m_domain).get());
        tell(number);
    });
}

void DefaultsPreferencesStore::waitForDone()
{
    m_lane.waitForDone();
}

/// Here at once, and then again in the domain, as others have left it by then.
void DefaultsPreferencesStore::change(const QString& key, const Edit& edit)
{
    if (const QVariant value = edit(m_values.value(key)); value.isValid())
        m_values.insert(key, value);
    else
        m_values.remove(key);
    m_lane.add([this, key, edit, number = ++m_changes](const std::stop_token&) {
        const auto domain = cfString(m_domain);
        const auto name = cfString(key);
        CFPreferencesAppSynchronize(domain.get());
        const CFOwned<CFTypeRef> before(CFPreferencesCopyValue(
            name.get(), domain.get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
        const auto after = cfValue(edit(valueOf(before.get())));
        CFPreferencesSetAppValue(name.get(), after.get(), domain.get()); // null removes it
        CFPreferencesAppSynchronize(domain.get());
        tell(number);
    });
}

/// In the background.
void DefaultsPreferencesStore::tell(int changes)
{
    m_inbox.address().send([this, changes, values = read()] { take(changes, values); });
}

/// What is told from before a change that is still under way would undo it; more follows.
void DefaultsPreferencesStore::take(int changes, const QVariantMap& values)
{
    if (changes != m_changes || values == m_values)
        return;
    m_values = values;
    Q_EMIT changed();
}

QVariantMap DefaultsPreferencesStore::read() const
{
    const auto domain = cfString(m_domain);
    const CFOwned<CFDictionaryRef> all(CFPreferencesCopyMultiple(
        nullptr, domain.get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
    QVariantMap values;
    if (all)
        for (const QString& key : keysOf(all.get()))
            values.insert(key, valueOf(CFDictionaryGetValue(all.get(), cfString(key).get())));
    return values;
}

} // namespace varno

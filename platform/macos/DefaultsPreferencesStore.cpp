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

QVariant variantOf(CFTypeRef value)
{
    if (const auto boolean = booleanOf(value))
        return *boolean;
    if (const auto string = stringOf(value))
        return *string;
    if (const auto strings = stringsOf(value))
        return *strings;
    return {};
}

} // namespace

DefaultsPreferencesStore::DefaultsPreferencesStore(QString domain)
    : m_domain(std::move(domain))
    , m_values(read())
{
}

void DefaultsPreferencesStore::editStringArray(const QString& key, const ListEdit& edit)
{
    change(key, [edit](const QVariant& value) {
        return edit(valueOf<QStringList>(value).value_or(QStringList()));
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

void DefaultsPreferencesStore::set(const QString& key, const QVariant& value)
{
    change(key, [value](const QVariant&) { return value; });
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
        const auto after = cfValue(edit(variantOf(before.get())));
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
            values.insert(key, variantOf(CFDictionaryGetValue(all.get(), cfString(key).get())));
    return values;
}

} // namespace varno

#include "shortcuts/StoredShortcut.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

const QString keyCodeMember = u"carbonKeyCode"_s;
const QString modifiersMember = u"carbonModifiers"_s;

std::optional<int> integer(const QJsonValue& value)
{
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    const qint64 number = value.toInteger(none); // none for a fraction too
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(number);
}

} // namespace

QString preferenceKey(const QString& name)
{
    return u"KeyboardShortcuts_"_s + name;
}

QString encoded(const Shortcut& shortcut)
{
    const QJsonObject object{{keyCodeMember, shortcut.carbonKeyCode()},
                             {modifiersMember, shortcut.carbonModifiers()}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<Shortcut> decoded(const QString& text)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    const std::optional<int> keyCode = integer(object.value(keyCodeMember));
    const std::optional<int> modifiers = integer(object.value(modifiersMember));
    if (!keyCode || !modifiers)
        return std::nullopt;
    return Shortcut(*keyCode, *modifiers);
}

} // namespace varno

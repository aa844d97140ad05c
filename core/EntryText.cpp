#include "core/EntryText.h"

#include <QList>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr auto relatedTopicsMarker = "SEE_ALSO_JSON:"_L1;
constexpr auto closingTag = "</entry>"_L1;

QStringView before(QStringView text, QLatin1StringView marker)
{
    const qsizetype position = text.indexOf(marker);
    return position < 0 ? text : text.first(position);
}

} // namespace

std::optional<QString> relatedTopicsText(const QString& answer)
{
    const qsizetype position = answer.indexOf(relatedTopicsMarker);
    if (position < 0)
        return std::nullopt;
    return answer.sliced(position + relatedTopicsMarker.size()).trimmed();
}

QString cleanEntryText(const QString& answer)
{
    return before(before(answer, relatedTopicsMarker), closingTag).trimmed().toString();
}

QString capitalised(const QString& query)
{
    QString title;
    title.reserve(query.size());
    bool firstLetterSeen = false;
    for (const char32_t codePoint : query.toUcs4()) {
        const QString character = QString::fromUcs4(&codePoint, 1);
        title += firstLetterSeen ? character.toLower() : character.toUpper();
        firstLetterSeen =
            !QChar::isSpace(codePoint) && (firstLetterSeen || QChar::isLetter(codePoint));
    }
    return title;
}

} // namespace varno

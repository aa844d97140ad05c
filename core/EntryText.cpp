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
    qsizetype start = 0; // of what is to be in the same case
    bool firstLetterSeen = false;
    const auto flush = [&](qsizetype end) {
        const QString part = query.sliced(start, end - start);
        title += firstLetterSeen ? part.toLower() : part.toUpper();
        start = end;
    };
    for (qsizetype at = 0; at < query.size();) {
        const bool isPair =
            query[at].isHighSurrogate() && at + 1 < query.size() && query[at + 1].isLowSurrogate();
        const char32_t codePoint =
            isPair ? QChar::surrogateToUcs4(query[at], query[at + 1]) : query[at].unicode();
        at += isPair ? 2 : 1;
        const bool seen =
            !QChar::isSpace(codePoint) && (firstLetterSeen || QChar::isLetter(codePoint));
        if (seen != firstLetterSeen)
            flush(at);
        firstLetterSeen = seen;
    }
    flush(query.size());
    return title;
}

} // namespace varno

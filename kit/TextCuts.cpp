#include "kit/TextCuts.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace varno {
namespace {

constexpr QChar ellipsis(0x2026);

struct CloseBreakIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

/// Null when ICU has no data for it; then every position counts as a boundary.
UBreakIterator* breakIterator()
{
    thread_local const std::unique_ptr<UBreakIterator, CloseBreakIterator> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, CloseBreakIterator>(
            ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error));
    }();
    return iterator.get();
}

/// Characters below the first combining mark stand for themselves, unless they are a line end.
bool standsAlone(QChar character)
{
    return character >= u' ' && character < QChar(0x300);
}

/// The break iterator over `text`; null when `position` is a boundary for certain.
UBreakIterator* iteratorUnlessBoundary(QStringView text, qsizetype position)
{
    if (position <= 0 || position >= text.size() ||
        (standsAlone(text[position - 1]) && standsAlone(text[position])))
        return nullptr;
    UBreakIterator* iterator = breakIterator();
    UErrorCode error = U_ZERO_ERROR;
    if (iterator != nullptr)
        ubrk_setText(iterator, text.utf16(), static_cast<int32_t>(text.size()), &error);
    if (iterator == nullptr || U_FAILURE(error) ||
        ubrk_isBoundary(iterator, static_cast<int32_t>(position)))
        return nullptr;
    return iterator;
}

constexpr qsizetype costOfPicture = 64; // of each half: its image is decoded every time it is asked
constexpr qsizetype costOfLargeScript = 4;

/// Whether a unit of UTF-16 may belong to an emoji that has an image of its own.
bool isPartOfPicture(QChar unit)
{
    constexpr char16_t pictureSelector = 0xFE0F;
    return unit.isSurrogate() || unit == pictureSelector ||
           u_hasBinaryProperty(unit.unicode(), UCHAR_EMOJI_PRESENTATION) != 0;
}

/// Characters of scripts that are written without blanks and wrap anywhere, and pictures.
bool isWordByItself(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= 0x2E80 && unit < 0xE000) || (unit >= 0xF900 && unit < 0xFB00) ||
           (unit >= 0xFF00 && unit < 0xFFF0) || (unit >= 0x900 && isPartOfPicture(character));
}

qsizetype layoutCost(QChar character)
{
    if (character.unicode() < 0x900)
        return 1;
    return isPartOfPicture(character) ? costOfPicture : costOfLargeScript;
}

qsizetype cutWithinWord(QStringView text, qsizetype wordBegin, qsizetype limit)
{
    const qsizetype boundary = characterBoundaryBefore(text, limit);
    if (boundary > wordBegin)
        return boundary;
    return text[limit].isLowSurrogate() ? limit + 1 : limit;
}

/// Of the character that would be the first one beyond the limit.
qsizetype shownLength(QStringView text, const TextLimit& limit)
{
    qsizetype lines = 1;
    for (qsizetype position = 0; position < std::min(text.size(), limit.letters); ++position) {
        const bool isSecond =
            position > 0 && text[position] == u'\n' && text[position - 1] == u'\r';
        if (breaksLine(text[position]) && !isSecond && ++lines > limit.lines)
            return position;
    }
    return text.size() > limit.letters ? cutWithinWord(text, 0, limit.letters) : text.size();
}

} // namespace

qsizetype characterBoundaryBefore(QStringView text, qsizetype position)
{
    UBreakIterator* iterator = iteratorUnlessBoundary(text, position);
    return iterator == nullptr ? position
                               : ubrk_preceding(iterator, static_cast<int32_t>(position));
}

qsizetype characterBoundaryAfter(QStringView text, qsizetype position)
{
    UBreakIterator* iterator = iteratorUnlessBoundary(text, position);
    return iterator == nullptr ? position
                               : ubrk_following(iterator, static_cast<int32_t>(position));
}

qsizetype layoutCost(QStringView text)
{
    return std::accumulate(
        text.begin(), text.end(), qsizetype(0),
        [](qsizetype sum, QChar character) { return sum + layoutCost(character); });
}

qsizetype lengthWithin(QStringView text, qsizetype cost)
{
    for (qsizetype position = 0; position < text.size(); ++position) {
        cost -= layoutCost(text[position]);
        if (cost < 0)
            return cutWithinWord(text, 0, position);
    }
    return text.size();
}

qsizetype rowLength(QStringView line, const RowLimit& limit)
{
    if (line.size() <= std::min(limit.cost / costOfPicture, limit.word))
        return line.size();
    qsizetype wordBegin = 0;
    qsizetype cost = 0;
    for (qsizetype position = 0; position < line.size() - 1; ++position) {
        const QChar character = line[position];
        const bool isWord = isWordByItself(character);
        if (cost >= limit.cost && character.isSpace())
            return position;
        if (cost >= limit.cost && isWord)
            return cutWithinWord(line, 0, position);
        if (character.isSpace() || isWord)
            wordBegin = position + 1;
        else if (position - wordBegin >= limit.word)
            return cutWithinWord(line, wordBegin, position);
        cost += layoutCost(character);
    }
    return line.size();
}

bool breaksLine(QChar character)
{
    return character == u'\n' || character == u'\r' || character == u'\v' || character == u'\f' ||
           character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

QString shortened(const QString& text, const TextLimit& limit)
{
    QStringView shown = QStringView(text).first(shownLength(text, limit));
    if (shown.size() == text.size())
        return text;
    while (!shown.isEmpty() && shown.back().isSpace())
        shown.chop(1);
    return shown.toString() + ellipsis;
}

qsizetype shownCount(const QStringList& list, const ListLimit& limit, const TextLimit& entry)
{
    qsizetype letters = 0;
    for (qsizetype count = 0; count < list.size(); ++count) {
        letters += std::min(list.at(count).size(), entry.letters);
        if (count == limit.entries || letters > limit.letters)
            return count;
    }
    return list.size();
}

} // namespace varno

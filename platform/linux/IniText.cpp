#include "platform/linux/IniText.h"

#include <algorithm>

namespace varno {

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
constexpr QByteArrayView generalHeader("[General]\n");
constexpr QStringView escapeLetters(u"abfnrtv\"\\?'");
constexpr QStringView escapeMeanings(u"\a\b\f\n\r\t\v\"\\?'");
constexpr QStringView hexadecimalDigits(u"0123456789abcdef");
constexpr auto stringMark = "@String("_L1;
constexpr auto noWords = "@Invalid()"_L1;

qsizetype beginning(QByteArrayView text)
{
    return text.startsWith(byteOrderMark) ? byteOrderMark.size() : 0;
}

bool endsLine(char byte)
{
    return byte == '\n' || byte == '\r';
}

bool isBlank(QChar letter)
{
    return letter == u' ' || letter == u'\t';
}

struct Line {
    qsizetype start = 0;
    qsizetype equals = -1; ///< of the first "=", if there is one
    qsizetype end = 0;     ///< of a line break or a comment, or of the text
};

/// The next line that holds anything. Line breaks between quotes do not end it.
std::optional<Line> nextLine(QByteArrayView text, qsizetype from)
{
    qsizetype at = from;
    for (bool isComment = false; at < text.size(); ++at) {
        const char byte = text[at];
        if (endsLine(byte))
            isComment = false;
        else if (byte == ';')
            isComment = true;
        else if (!isComment && byte != ' ' && byte != '\t')
            break;
    }
    if (at == text.size())
        return std::nullopt;

    Line line{.start = at};
    for (bool isQuoted = false; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte == '\\')
            ++at;
        else if (byte == '"')
            isQuoted = !isQuoted;
        else if (byte == '=' && line.equals < 0)
            line.equals = at;
        else if (!isQuoted && (byte == ';' || endsLine(byte)))
            break;
    }
    line.end = std::min(at, text.size());
    return line;
}

/// Where the key is given a value: the last one holds.
QList<Line> linesOf(QByteArrayView text, QByteArrayView key)
{
    QList<Line> lines;
    bool isGeneral = true;
    for (auto line = nextLine(text, beginning(text)); line; line = nextLine(text, line->end)) {
        if (text[line->start] == '[') {
            const QByteArrayView name = text.first(line->end).sliced(line->start + 1);
            const qsizetype length = name.indexOf(']');
            isGeneral = name.first(length < 0 ? name.size() : length)
                            .trimmed()
                            .compare("general", Qt::CaseInsensitive) == 0;
        } else if (isGeneral && line->equals >= 0 &&
                   text.first(line->equals).sliced(line->start).trimmed() == key) {
            lines.append(*line);
        }
    }
    return lines;
}

/// Appends what the escape behind the backslash before `at` stands for. Returns its end.
qsizetype unescape(QStringView text, qsizetype at, QString& word)
{
    if (at == text.size())
        return at;
    if (const qsizetype letter = escapeLetters.indexOf(text[at]); letter >= 0) {
        word += escapeMeanings[letter];
        return at + 1;
    }
    const bool isHexadecimal = text[at] == u'x';
    const QStringView digits = hexadecimalDigits.first(isHexadecimal ? 16 : 8);
    const qsizetype start = isHexadecimal ? at + 1 : at;
    qsizetype end = start;
    uint code = 0;
    for (; end < text.size(); ++end) {
        const qsizetype digit = digits.indexOf(text[end], 0, Qt::CaseInsensitive);
        if (digit < 0)
            break;
        code = code * static_cast<uint>(digits.size()) + static_cast<uint>(digit);
    }
    if (end > start)
        word += QChar(static_cast<char16_t>(code));
    return std::max(end, at + 1);
}

QStringList splitWords(QStringView text)
{
    QStringList words;
    QString word;
    qsizetype length = 0; // without the blanks at its end
    bool isQuoted = false;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        while (at < text.size() && text[at] != u'"' && text[at] != u'\\' &&
               (isQuoted || (text[at] != u',' && !isBlank(text[at]))))
            ++at;
        word += text.sliced(start, at - start);
        if (at > start)
            length = word.size();
        if (at == text.size())
            break;
        const QChar letter = text[at++];
        if (letter == u'"') {
            isQuoted = !isQuoted;
        } else if (letter == u'\\') {
            at = unescape(text, at, word);
            length = word.size();
        } else if (letter == u',') {
            words.append(word.left(length));
            word.clear();
            length = 0;
        } else if (length > 0) {
            word += letter;
        }
    }
    return words << word.left(length);
}

/// Numbers, dates and the like are words like "@Date(…)"; strings that begin with "@" have two.
std::optional<QString> unmarked(const QString& word)
{
    if (word.startsWith("@@"_L1))
        return word.sliced(1);
    if (!word.startsWith(u'@') || !word.endsWith(u')'))
        return word;
    return word.startsWith(stringMark) ? std::optional(word.sliced(stringMark.size()).chopped(1))
                                       : std::nullopt;
}

QString marked(const QString& word)
{
    if (word.contains(QChar(0)))
        return stringMark + word + u')';
    return word.startsWith(u'@') ? u'@' + word : word;
}

QByteArray escaped(const QString& word)
{
    bool needsQuotes = word.startsWith(u' ') || word.endsWith(u' ');
    bool isInNumber = false;
    QString text;
    text.reserve(word.size());
    for (const QChar letter : word) {
        const bool isDigit = isInNumber && hexadecimalDigits.contains(letter, Qt::CaseInsensitive);
        isInNumber = false;
        if (letter >= u' ' && letter != u'"' && letter != u'\\' && !isDigit) {
            text += letter;
            needsQuotes = needsQuotes || letter == u';' || letter == u',' || letter == u'=';
        } else if (const auto index = escapeMeanings.indexOf(letter); index >= 0) {
            text += u'\\';
            text += escapeLetters[index];
        } else {
            text += letter.isNull() ? u"\\0"_s : u"\\x"_s + QString::number(letter.unicode(), 16);
            isInNumber = true;
        }
    }
    return needsQuotes ? '"' + text.toUtf8() + '"' : text.toUtf8();
}

} // namespace

std::optional<QByteArray> iniValue(QByteArrayView text, QByteArrayView key)
{
    const QList<Line> lines = linesOf(text, key);
    if (lines.isEmpty())
        return std::nullopt;
    return text.first(lines.constLast().end).sliced(lines.constLast().equals + 1).toByteArray();
}

QByteArray withIniValue(QByteArrayView text, QByteArrayView key,
                        const std::optional<QByteArray>& value)
{
    const QList<Line> oldLines = linesOf(text, key);
    QByteArray line = value ? key.toByteArray() + '=' + *value : QByteArray();
    QByteArray result;
    result.reserve(text.size() + generalHeader.size() + line.size() + 1);
    qsizetype done = 0;
    if (value && oldLines.isEmpty()) { // at the top, where nothing before it can be left open
        done = beginning(text);
        const bool hasHeader = text.sliced(done).startsWith(generalHeader);
        done += hasHeader ? generalHeader.size() : 0;
        result += text.first(done);
        result += hasHeader ? QByteArrayView() : generalHeader;
        result += line + '\n';
    }
    for (const Line& old : oldLines) {
        result += text.first(old.start).sliced(done);
        result += line;
        done = old.end;
        if (line.isEmpty() && done < text.size() && text[done] != ';')
            done += text.sliced(done).startsWith("\r\n") ? 2 : 1;
        line.clear();
    }
    result += text.sliced(done);
    return result;
}

std::optional<QStringList> iniWords(QByteArrayView value)
{
    QStringList words = splitWords(QString::fromUtf8(value));
    if (words.size() == 1 && words.constFirst() == noWords)
        return QStringList();
    for (QString& word : words) {
        const std::optional<QString> string = unmarked(word);
        if (!string)
            return std::nullopt;
        word = *string;
    }
    return words;
}

QByteArray iniValueOf(const QStringList& words)
{
    if (words.isEmpty())
        return {noWords.data(), noWords.size()};
    QByteArrayList values;
    for (const QString& word : words)
        values.append(escaped(marked(word)));
    return values.join(", ");
}

} // namespace varno

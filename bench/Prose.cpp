#include "bench/Prose.h"

#include <array>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;

constexpr std::array<QStringView, 24> words = {
    u"the",      u"of",        u"and",     u"rivers",    u"a",         u"in",
    u"sediment", u"carried",   u"was",     u"by",        u"century",   u"its",
    u"mountain", u"which",     u"slowly",  u"observers", u"**delta**", u"from",
    u"measured", u"particles", u"coastal", u"to",        u"plain",     u"described"};
constexpr std::array<QStringView, 6> rareWords = {u"Rhône",   u"Łódź",    u"“silt”",
                                                  u"Ποταμός", u"30 µm –", u"黄河"};

} // namespace

QString Prose::text(qsizetype length)
{
    QString text;
    text.reserve(length + 32);
    while (text.size() < length) {
        text += word();
        const int end = number(1, 100);
        text += end == 1 ? u".\n\n"_s : end < 9 ? u". "_s : end < 14 ? u", "_s : u" "_s;
    }
    text.truncate(length);
    if (text.back().isHighSurrogate())
        text.chop(1);
    return text;
}

int Prose::number(int least, int most)
{
    // Not std::uniform_int_distribution, which differs from library to library.
    return least + static_cast<int>(m_random() % static_cast<unsigned int>(most - least + 1));
}

QString Prose::word()
{
    if (number(1, 60) == 1)
        return rareWords[static_cast<std::size_t>(number(0, rareWords.size() - 1))].toString();
    return words[static_cast<std::size_t>(number(0, words.size() - 1))].toString();
}

} // namespace varno::bench

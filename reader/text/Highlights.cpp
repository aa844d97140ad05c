#include "reader/text/Highlights.h"

#include "kit/TextCuts.h"

namespace varno {
namespace {

constexpr QChar capitalIWithDot(0x130);

/// The position in a text for one in its lower-case form. One character alone has a longer
/// lower-case form: "İ" becomes "i" with a combining dot.
class OriginalPositions {
public:
    explicit OriginalPositions(QStringView text)
        : m_text(text)
    {
    }

    /// Positions are asked for in ascending order.
    qsizetype of(qsizetype lowered)
    {
        for (; m_next >= 0; findNext()) {
            if (lowered - m_longer <= m_next)
                break;
            ++m_longer;
        }
        return lowered - m_longer;
    }

private:
    void findNext() { m_next = m_text.indexOf(capitalIWithDot, m_next + 1); }

    QStringView m_text;
    qsizetype m_next = m_text.indexOf(capitalIWithDot);
    qsizetype m_longer = 0;
};

} // namespace

QList<TextRange> highlightRanges(QStringView shown, const QString& needle)
{
    QList<TextRange> ranges;
    if (needle.isEmpty())
        return ranges;
    const QString lowered = shown.toString().toLower();
    const QString loweredNeedle = needle.toLower();
    OriginalPositions originals(shown);
    for (qsizetype hit = lowered.indexOf(loweredNeedle); hit >= 0;
         hit = lowered.indexOf(loweredNeedle, hit + loweredNeedle.size())) {
        const qsizetype begin = characterBoundaryBefore(shown, originals.of(hit));
        const qsizetype last = originals.of(hit + loweredNeedle.size() - 1);
        ranges.append({begin, characterBoundaryAfter(shown, last + 1)});
    }
    return ranges;
}

} // namespace varno

#pragma once

#include <QString>

#include <random>

namespace varno::bench {

/// Text that reads like an article's as far as its bytes go: sentences, paragraphs, some emphasis,
/// now and then a letter outside ASCII. The same text for the same seed.
class Prose {
public:
    explicit Prose(unsigned int seed)
        : m_random(seed)
    {
    }

    /// Words of `length` characters in all.
    QString text(qsizetype length);

    /// A whole number from `least` to `most`.
    int number(int least, int most);

private:
    QString word();

    std::mt19937 m_random;
};

} // namespace varno::bench

#pragma once

#include <QtGlobal>

#include <limits>

namespace varno {

// How much is shown of what was not written by us. The time to lay out a text grows with its length
// and with the square of its longest word, and some characters take a hundred times as long as
// others; each entry of a list takes its own. All figures are beyond any text that is meant to be
// read where it stands. Letters are UTF-16 units.

/// The limits beyond which a line goes on in another row.
struct RowLimit {
    qsizetype cost; ///< layout cost of the row, which ends at the next blank then
    qsizetype word; ///< letters of a word
};
inline constexpr RowLimit pageRow{.cost = 8192, .word = 1024};
/// Tool tips wrap between words only.
inline constexpr RowLimit toolTipRow{.cost = std::numeric_limits<qsizetype>::max(), .word = 48};

/// The limits of a text; what is beyond them is shown as "…".
struct TextLimit {
    qsizetype letters = std::numeric_limits<qsizetype>::max();
    qsizetype lines = letters; ///< that its own breaks make, where it keeps them
};
/// The limit of a text that has no other.
inline constexpr TextLimit textLimit{.letters = 1024, .lines = 16};
inline constexpr TextLimit titleLimit{.letters = 240, .lines = 4};
inline constexpr TextLimit contentsEntryLimit{.letters = 128, .lines = 4};
/// The limit of a crumb, a topic and a search in a list.
inline constexpr TextLimit lineLimit{.letters = 256};
inline constexpr TextLimit messageLimit{.letters = 1024, .lines = 16};
/// The limit of tool tips and accessible names, which tell what is shortened elsewhere.
inline constexpr TextLimit toolTipLimit{.letters = 2048, .lines = 32};

/// The limits of a list.
struct ListLimit {
    qsizetype entries;
    qsizetype letters; ///< of all entries together, each as it is shown
};
inline constexpr ListLimit contentsLimit{.entries = 100, .letters = 2048};
inline constexpr ListLimit topicsLimit{.entries = 40, .letters = 2048};
inline constexpr qsizetype mostSearchesListed = 8;

// What fields take, in letters, and what its layout may cost: they lay it out as one row, at every
// letter that is typed.
inline constexpr int longestSearch = 8192;
inline constexpr qsizetype costliestSearch = 64LL * 1024;
inline constexpr int longestKey = 4096;

} // namespace varno

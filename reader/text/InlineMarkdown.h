#pragma once

#include <QFlags>
#include <QList>
#include <QString>

namespace varno {

enum class InlineStyle : quint8 {
    strong = 1U << 0U,
    emphasis = 1U << 1U,
    code = 1U << 2U,
    strikethrough = 1U << 3U,
};
Q_DECLARE_FLAGS(InlineStyles, InlineStyle)
Q_DECLARE_OPERATORS_FOR_FLAGS(InlineStyles)

/// A run of text in one style. A line break within it is U+2028.
struct InlineRun {
    QString text;
    InlineStyles styles;
    QString link; ///< where it leads, as written; empty when it is no link

    bool operator==(const InlineRun&) const = default;
};

/// The inline Markdown of one paragraph, after CommonMark with strikethrough by two tildes: what is
/// shown, marks gone. Marks of blocks (headings, lists, quotes, fences, …) have no meaning here and
/// show as they are, as does HTML. Of an image its alternative text is shown. Lines that are only
/// wrapped are joined by a space; a line that begins with the mark of a block keeps its place on a
/// line of its own.
///
/// Neighbouring runs differ in style or link. Takes time in proportion to the text, however it is
/// nested.
[[nodiscard]] QList<InlineRun> styledText(QStringView markdown);

/// The text of the runs, without their styles.
[[nodiscard]] QString plainText(const QList<InlineRun>& runs);

} // namespace varno

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
    underline = 1U << 4U,
    subscript = 1U << 5U,
    superscript = 1U << 6U,
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

/// The inline Markdown of one paragraph, after CommonMark with strikethrough by two tildes and bare
/// web addresses as links: what is shown, marks gone. Marks of blocks (headings, lists, quotes,
/// fences, …) have no meaning here and show as they are, as does HTML but for line breaks and some
/// pairs of tags: sub, sup, b, strong, i, em, u, ins, s, del, code, kbd. A formula between "\(" and
/// "\)", "\[" and "\]" or "$$" and "$$" shows as it is written. Of an image its alternative text is
/// shown. Lines that are only wrapped are joined by a space; a line that begins with the mark of a
/// block keeps its place on a line of its own, as do the lines of a formula.
///
/// Neighbouring runs differ in style or link. Takes time in proportion to the text, however it is
/// nested.
[[nodiscard]] QList<InlineRun> styledText(QStringView markdown);

/// Text that is shown as it stands, in one run.
[[nodiscard]] QList<InlineRun> verbatimText(QStringView text);

/// The text of the runs, without their styles.
[[nodiscard]] QString plainText(const QList<InlineRun>& runs);

} // namespace varno

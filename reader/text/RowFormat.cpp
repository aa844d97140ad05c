#include "reader/text/RowFormat.h"

#include "kit/ScriptDirection.h"
#include "kit/TextStyle.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QUrl>

#include <algorithm>
#include <array>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

struct KindStyle {
    int sizeOffset = 0; ///< added to the size of the text
    QFont::Weight weight = QFont::Normal;
    double lineSpacing = 0;  ///< between lines, in sizes of the text
    double paddingBelow = 0; ///< in points; 0 is the padding that goes with the size of the text
};

constexpr double paddingBelowText = 1.4; // in sizes of the text
constexpr int spaceBetweenItems = 5;
constexpr int paddingAboveBoldHeader = 6;
constexpr int bulletWidth = 10;
constexpr int numberWidth = 24;
constexpr int markGap = 10;
constexpr double numberOpacity = 0.55;

// Of what a paragraph may be set as; lengths in sizes of the text.
constexpr int codeInset = 12; // in points
constexpr double cellPadding = 0.3;
constexpr KindStyle codeStyle{.sizeOffset = -2, .lineSpacing = 0.2};
constexpr KindStyle cellStyle{.sizeOffset = -1, .lineSpacing = 0.1};
constexpr KindStyle headerStyle{.sizeOffset = -1, .weight = QFont::DemiBold, .lineSpacing = 0.1};

/// What is wider than its frame reaches into the gap, this far.
constexpr int widestNumber = numberWidth + 6;

const KindStyle& styleOf(BlockKind kind)
{
    static constexpr std::array<KindStyle, 7> styles = {{
        {.sizeOffset = 1, .weight = QFont::Bold, .paddingBelow = 10},     // bold header
        {.sizeOffset = 2, .weight = QFont::DemiBold, .paddingBelow = 10}, // heading 3
        {.sizeOffset = 5, .weight = QFont::DemiBold, .paddingBelow = 14}, // heading 2
        {.sizeOffset = 9, .weight = QFont::Light, .paddingBelow = 20},    // heading 1
        {},                                                               // bullet list
        {},                                                               // numbered list
        {.lineSpacing = 0.45},                                            // paragraph
    }};
    return styles[static_cast<std::size_t>(kind)];
}

const KindStyle& styleOf(const RowLook& look)
{
    switch (look.form) {
    case RowForm::code:
        return codeStyle;
    case RowForm::cell:
        return look.isHeader ? headerStyle : cellStyle;
    case RowForm::text:
    case RowForm::quote:
    case RowForm::rule:
    case RowForm::hidden:
        break;
    }
    return styleOf(look.kind);
}

/// A sentence that begins with a number looks like the paragraph that it is.
const KindStyle& styleOf(const Row& row)
{
    return row.start.isSentence ? styleOf(BlockKind::paragraph) : styleOf(lookOf(row.start));
}

Qt::Alignment alignmentOf(CellAlignment alignment)
{
    switch (alignment) {
    case CellAlignment::left:
        return Qt::AlignLeft | Qt::AlignAbsolute;
    case CellAlignment::centre:
        return Qt::AlignHCenter;
    case CellAlignment::right:
        return Qt::AlignRight | Qt::AlignAbsolute;
    case CellAlignment::natural:
        break;
    }
    return Qt::AlignLeft;
}

/// The space above a row, beyond that below the row before it.
double paddingAbove(BlockKind kind)
{
    return kind == BlockKind::boldHeader ? paddingAboveBoldHeader : 0;
}

} // namespace

RowFormat::RowFormat(int fontSize, const QColor& textColor, Qt::LayoutDirection direction)
    : m_fontSize(fontSize)
    , m_textColor(textColor)
    , m_direction(direction)
    , m_font(varno::font({.size = static_cast<double>(fontSize), .design = FontDesign::serif}))
{
}

QColor RowFormat::numberColor() const
{
    QColor color = m_textColor;
    color.setAlphaF(static_cast<float>(color.alphaF() * numberOpacity));
    return color;
}

double RowFormat::paddingBelow(const Row& row) const
{
    const bool isCell = row.start.form == RowForm::cell;
    const double padding = isCell ? cellPadding * m_fontSize : 0;
    switch (row.end) {
    case RowEnd::blank:
    case RowEnd::word:
        return 0;
    case RowEnd::item:
        return spaceBetweenItems;
    case RowEnd::line:
    case RowEnd::cell:
        return padding;
    case RowEnd::block:
        break;
    }
    const KindStyle& style = styleOf(row);
    const double below =
        style.paddingBelow > 0 ? style.paddingBelow : paddingBelowText * m_fontSize;
    return padding + below - style.lineSpacing * m_fontSize; // the last line has its spacing too
}

QFont RowFormat::markFont(const QString& mark) const
{
    QFont font = m_font;
    const double width = QFontMetricsF(font).horizontalAdvance(mark);
    if (width > widestNumber)
        font.setPixelSize(static_cast<int>(m_fontSize * widestNumber / width));
    return font;
}

bool RowFormat::dependsOnText(const RowStart& row) const
{
    return isList(row.kind) || row.form == RowForm::quote || m_direction == Qt::RightToLeft;
}

QTextBlockFormat RowFormat::block(const Row& row, const QString& text) const
{
    QTextBlockFormat format;
    const BlockKind kind = row.start.kind;
    const bool isMirroredPage = m_direction == Qt::RightToLeft;
    const bool rightToLeft = isMirroredPage || text.isRightToLeft();
    if (isMirroredPage && hasRightToLeftLetters(text))
        format.setLayoutDirection(Qt::RightToLeft);
    if (rightToLeft && (isList(kind) || row.start.form == RowForm::quote))
        format.setAlignment(alignmentOf(CellAlignment::right));
    format.setProperty(rowBlock, row.start.block);
    format.setProperty(rowEnd, static_cast<int>(row.end));
    format.setProperty(rowKind, static_cast<int>(kind));
    format.setBottomMargin(paddingBelow(row));
    if (paddingAbove(kind) > 0 && row.start.within == RowStart::Within::piece)
        format.setTopMargin(paddingAbove(kind));
    if (styleOf(row).lineSpacing > 0)
        format.setLineHeight(styleOf(row).lineSpacing * m_fontSize,
                             QTextBlockFormat::LineDistanceHeight);
    if (row.start.form != RowForm::text)
        placeForm(format, row, rightToLeft);
    if (!isList(kind) || row.start.isSentence)
        return format;
    const double width = kind == BlockKind::bulletList ? bulletWidth : numberWidth;
    format.setProperty(rowMark, row.mark);
    format.setProperty(rowMarkWidth, width);
    format.setProperty(rowMarkCentred, kind == BlockKind::bulletList);
    if (rightToLeft)
        format.setRightMargin(width + markGap);
    else
        format.setLeftMargin(width + markGap);
    return format;
}

void RowFormat::placeForm(QTextBlockFormat& format, const Row& row, bool rightToLeft) const
{
    const RowStart& start = row.start;
    format.setProperty(rowForm, static_cast<int>(start.form));
    format.setProperty(rowNumber, start.number);
    if (start.form == RowForm::code) {
        format.setLeftMargin(codeInset);
        format.setRightMargin(codeInset);
        format.setLayoutDirection(Qt::LeftToRight);
    } else if (start.form == RowForm::quote) {
        const double indent = quoteIndent * std::min(start.number, deepestQuote);
        if (rightToLeft)
            format.setRightMargin(indent);
        else
            format.setLeftMargin(indent);
    } else if (start.form == RowForm::cell) {
        const bool isNatural = row.alignment == CellAlignment::natural;
        format.setAlignment(
            alignmentOf(rightToLeft && isNatural ? CellAlignment::right : row.alignment));
        format.setProperty(rowIsMirrored, rightToLeft);
        format.setProperty(rowIsHeader, start.isHeader);
        if (start.within != RowStart::Within::line)
            format.setTopMargin(cellPadding * m_fontSize);
    }
}

const QTextCharFormat& RowFormat::styled(const RowLook& look, InlineStyles styles)
{
    const uint key = ((static_cast<uint>(look.kind) * 8 + static_cast<uint>(look.form)) * 2 +
                      (look.isHeader ? 1U : 0U)) *
                         256 +
                     styles.toInt();
    const auto known = m_formats.constFind(key);
    if (known != m_formats.constEnd())
        return *known;

    QTextCharFormat format;
    const KindStyle& style = styleOf(look);
    if (style.sizeOffset != 0)
        format.setProperty(QTextFormat::FontPixelSize, m_fontSize + style.sizeOffset);
    if (styles.testFlag(InlineStyle::strong))
        format.setFontWeight(QFont::Bold);
    else if (style.weight != QFont::Normal)
        format.setFontWeight(style.weight);
    if (styles.testFlag(InlineStyle::emphasis))
        format.setFontItalic(true);
    if (styles.testFlag(InlineStyle::strikethrough))
        format.setFontStrikeOut(true);
    if (styles.testFlag(InlineStyle::underline))
        format.setFontUnderline(true);
    if (styles.testFlag(InlineStyle::subscript))
        format.setVerticalAlignment(QTextCharFormat::AlignSubScript);
    else if (styles.testFlag(InlineStyle::superscript))
        format.setVerticalAlignment(QTextCharFormat::AlignSuperScript);
    if (styles.testFlag(InlineStyle::code) || look.form == RowForm::code)
        format.setFontFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
    return *m_formats.insert(key, format);
}

const QTextCharFormat& RowFormat::plain(const RowLook& look)
{
    return styled(look, {});
}

QTextCharFormat RowFormat::run(const RowLook& look, const InlineRun& run)
{
    QTextCharFormat format = styled(look, run.styles);
    if (mayBeOpened(run.link)) {
        format.setAnchor(true);
        format.setAnchorHref(run.link);
        format.setFontUnderline(true);
    }
    return format;
}

RowForm formOf(const QTextBlockFormat& format)
{
    return static_cast<RowForm>(format.intProperty(rowForm));
}

RowEnd endOf(const QTextBlockFormat& format)
{
    return static_cast<RowEnd>(format.intProperty(rowEnd));
}

RowLook lookOf(const RowStart& row)
{
    return {.kind = row.kind, .form = row.form, .isHeader = row.isHeader};
}

bool mayBeOpened(const QString& address)
{
    static const QStringList schemes = {u"http"_s, u"https"_s, u"mailto"_s};
    if (address.isEmpty())
        return false;
    const QUrl url(address, QUrl::TolerantMode);
    return url.isValid() && schemes.contains(url.scheme().toLower());
}

} // namespace varno

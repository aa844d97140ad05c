#include "reader/text/RowFormat.h"

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

/// A sentence that begins with a number looks like the paragraph that it is.
const KindStyle& styleOf(const Row& row)
{
    return styleOf(row.start.isSentence ? BlockKind::paragraph : row.start.kind);
}

/// The space above a row, beyond that below the row before it.
double paddingAbove(BlockKind kind)
{
    return kind == BlockKind::boldHeader ? paddingAboveBoldHeader : 0;
}

} // namespace

RowFormat::RowFormat(int fontSize, const QColor& textColor)
    : m_fontSize(fontSize)
    , m_textColor(textColor)
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
    if (row.end == RowEnd::item)
        return spaceBetweenItems;
    if (row.end != RowEnd::block)
        return 0;
    const KindStyle& style = styleOf(row);
    const double padding =
        style.paddingBelow > 0 ? style.paddingBelow : paddingBelowText * m_fontSize;
    return padding - style.lineSpacing * m_fontSize; // the last line has its spacing too
}

QFont RowFormat::markFont(const QString& mark) const
{
    QFont font = m_font;
    const double width = QFontMetricsF(font).horizontalAdvance(mark);
    if (width > widestNumber)
        font.setPixelSize(static_cast<int>(m_fontSize * widestNumber / width));
    return font;
}

QTextBlockFormat RowFormat::block(const Row& row, bool rightToLeft, double previousMargin) const
{
    QTextBlockFormat format;
    const BlockKind kind = row.start.kind;
    format.setProperty(rowBlock, row.start.block);
    format.setProperty(rowEnd, static_cast<int>(row.end));
    format.setBottomMargin(paddingBelow(row));
    if (paddingAbove(kind) > 0 && row.start.within == RowStart::Within::piece)
        format.setTopMargin(previousMargin + paddingAbove(kind));
    if (styleOf(row).lineSpacing > 0)
        format.setLineHeight(styleOf(row).lineSpacing * m_fontSize,
                             QTextBlockFormat::LineDistanceHeight);
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

const QTextCharFormat& RowFormat::styled(BlockKind kind, InlineStyles styles)
{
    const int key = static_cast<int>(kind) * 256 + static_cast<int>(styles.toInt());
    const auto known = m_formats.constFind(key);
    if (known != m_formats.constEnd())
        return *known;

    QTextCharFormat format;
    const KindStyle& style = styleOf(kind);
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
    if (styles.testFlag(InlineStyle::code))
        format.setFontFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
    return *m_formats.insert(key, format);
}

const QTextCharFormat& RowFormat::plain(BlockKind kind)
{
    return styled(kind, {});
}

QTextCharFormat RowFormat::run(BlockKind kind, const InlineRun& run)
{
    QTextCharFormat format = styled(kind, run.styles);
    if (mayBeOpened(run.link)) {
        format.setAnchor(true);
        format.setAnchorHref(run.link);
        format.setFontUnderline(true);
    }
    return format;
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

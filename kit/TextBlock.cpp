#include "kit/TextBlock.h"

#include "kit/LineRange.h"
#include "kit/TextCuts.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <cmath>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

constexpr QChar ellipsis(0x2026);
constexpr QChar zeroWidthSpace(0x200B);
constexpr qsizetype keptMeasures = 8;

QString withLineBreaksAs(QChar replacement, QString text)
{
    text.replace("\r\n"_L1, "\n"_L1);
    std::ranges::replace_if(text, breaksLine, replacement);
    return text;
}

/// How far each digit goes in that font, beside letters of the text's script: fonts may have other
/// digits for other scripts.
std::array<double, 10> digitAdvances(const QString& text, QFont font)
{
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    const QFontMetricsF metrics(font);
    const auto* letter = std::ranges::find_if(text, [](QChar c) { return c.isLetter(); });
    const QString before = letter == text.end() ? QString() : QString(*letter) + u' ';
    std::array<double, 10> advances{};
    for (std::size_t digit = 0; digit < advances.size(); ++digit)
        advances[digit] =
            metrics.horizontalAdvance(before + QChar(u'0' + static_cast<char16_t>(digit))) -
            metrics.horizontalAdvance(before);
    return advances;
}

/// Gives every digit the advance of the widest one, by letter spacing: Qt does not reach the
/// equal-width digits that a font may have.
QList<QTextLayout::FormatRange> equalDigitFormats(const QString& text, const QFont& font,
                                                  double tracking)
{
    const std::array<double, 10> advances = digitAdvances(text, font);
    const double widest = std::ranges::max(advances);
    QList<QTextLayout::FormatRange> formats;
    for (int index = 0; index < text.size(); ++index) {
        if (text[index] < u'0' || text[index] > u'9')
            continue;
        QFont spaced = font;
        spaced.setLetterSpacing(QFont::AbsoluteSpacing,
                                tracking + widest - advances[text[index].unicode() - u'0']);
        QTextCharFormat format;
        format.setFont(spaced);
        formats.append({.start = index, .length = 1, .format = format});
    }
    return formats;
}

QString withCutWords(QStringView text, const RowLimit& limit)
{
    QString cut;
    while (!text.isEmpty()) {
        const qsizetype length = rowLength(text, limit);
        cut += text.first(length);
        text = text.sliced(length);
        if (!text.isEmpty())
            cut += zeroWidthSpace;
    }
    return cut;
}

} // namespace

TextBlock::TextBlock(const QString& text, const TextStyle& style, const QFont& font,
                     Overflow overflow, double width)
    : m_style(style)
    , m_overflow(overflow)
{
    const QString shown = shortened(text, style.limit);
    m_isShortened = shown != text;
    const QChar lineBreak = overflow == Overflow::wrap ? QChar(QChar::LineSeparator) : QChar(u' ');
    prepare(m_whole, withLineBreaksAs(lineBreak, shown), font);
    setWidth(width);
}

void TextBlock::prepare(QTextLayout& layout, const QString& text, const QFont& font) const
{
    layout.setCacheEnabled(true);
    layout.setFont(font);
    layout.setText(text);
    if (m_style.equalDigits)
        layout.setFormats(equalDigitFormats(text, font, m_style.tracking));
    QTextOption option(Qt::AlignLeft);
    option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
}

void TextBlock::setWidth(double width)
{
    if (width == m_width)
        return;
    m_width = width;
    m_elided.reset();
    layOut(m_whole, m_overflow == Overflow::wrap ? QTextOption::WrapAtWordBoundaryOrAnywhere
                                                 : QTextOption::ManualWrap);
    if (m_overflow == Overflow::elide && m_size.width() > width)
        elide();
}

void TextBlock::layOut(QTextLayout& layout, QTextOption::WrapMode wrapMode)
{
    QTextOption option = layout.textOption();
    option.setWrapMode(wrapMode);
    layout.setTextOption(option);
    m_size = {};
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(m_width + m_style.tracking);
        line.setPosition({0, m_size.height()});
        m_size = {std::max(m_size.width(), line.naturalTextWidth() - m_style.tracking),
                  m_size.height() + line.height()};
    }
    layout.endLayout();
}

void TextBlock::elide()
{
    const double room = m_width - QFontMetricsF(m_whole.font()).horizontalAdvance(ellipsis);
    QString kept;
    if (room > 0) {
        QTextOption option = m_whole.textOption();
        option.setWrapMode(QTextOption::WrapAnywhere);
        m_whole.setTextOption(option);
        m_whole.beginLayout();
        QTextLine line = m_whole.createLine();
        line.setLineWidth(room + m_style.tracking);
        kept = m_whole.text().first(line.textLength());
        m_whole.endLayout();
    }
    while (!kept.isEmpty() && kept.back().isSpace())
        kept.chop(1);
    prepare(m_elided.emplace(), kept + ellipsis, m_whole.font());
    m_elided->setTextOption(m_whole.textOption());
    layOut(*m_elided, QTextOption::ManualWrap);
}

/// Of the layout, where that line is drawn.
QPointF TextBlock::origin(const QTextLine& line, const QRectF& place, Qt::Alignment alignment) const
{
    const double spareHeight = place.height() - m_size.height();
    const double top = place.top() + (alignment.testFlag(Qt::AlignTop)      ? 0
                                      : alignment.testFlag(Qt::AlignBottom) ? spareHeight
                                                                            : spareHeight / 2);
    const double spare = place.width() - (line.naturalTextWidth() - m_style.tracking);
    const double left = place.left() + (alignment.testFlag(Qt::AlignRight)     ? spare
                                        : alignment.testFlag(Qt::AlignHCenter) ? spare / 2
                                                                               : 0);
    return {left, std::round(top)};
}

void TextBlock::draw(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
                     const QColor& color) const
{
    painter.setPen(color);
    for (int index = 0; index < layout().lineCount(); ++index) {
        const QTextLine line = layout().lineAt(index);
        line.draw(&painter, origin(line, place, alignment));
    }
}

void TextBlock::fillRange(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
                          const TextRange& range, const QColor& color) const
{
    for (int index = 0; index < layout().lineCount(); ++index) {
        const QTextLine line = layout().lineAt(index);
        const qsizetype begin = std::max<qsizetype>(range.begin, line.textStart());
        const qsizetype end = std::min<qsizetype>(range.end, line.textStart() + line.textLength());
        for (const QRectF& rect : rangeRects(line, begin, end))
            painter.fillRect(rect.translated(origin(line, place, alignment)), color);
    }
}

qsizetype TextBlock::positionAt(const QPointF& point, const QRectF& place,
                                Qt::Alignment alignment) const
{
    for (int index = 0; index < layout().lineCount(); ++index) {
        const QTextLine line = layout().lineAt(index);
        const QPointF inLayout = point - origin(line, place, alignment);
        if (inLayout.y() < line.rect().bottom() || index == layout().lineCount() - 1)
            return line.xToCursor(inLayout.x());
    }
    return 0;
}

TextRange TextBlock::wordAt(qsizetype position) const
{
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, layout().text());
    words.setPosition(position);
    const qsizetype begin = words.isAtBoundary() ? position : words.toPreviousBoundary();
    words.setPosition(begin);
    return {.begin = begin, .end = std::max(begin, words.toNextBoundary())};
}

LaidOutText& LaidOutText::of(const QString& text, const TextStyle& style, const QFont& font,
                             Overflow overflow)
{
    if (m_block && m_text == text && m_font == font)
        return *this;
    m_text = text;
    m_font = font;
    m_block.emplace(text, style, font, overflow);
    m_measures = {{.size = m_block->size(), .isElided = m_block->isElided()}};
    return *this;
}

TextMeasure LaidOutText::measure(double width)
{
    const auto known = std::ranges::find(m_measures, width, &TextMeasure::width);
    if (known != m_measures.end())
        return *known;
    m_block->setWidth(width);
    if (m_measures.size() == keptMeasures)
        m_measures.removeFirst();
    m_measures.append({width, m_block->size(), m_block->isElided()});
    return m_measures.constLast();
}

const TextBlock& LaidOutText::block(double width)
{
    m_block->setWidth(width);
    return *m_block;
}

QString plainToolTip(const QString& text)
{
    const QString shown = withCutWords(shortened(text, toolTipLimit), toolTipRow);
    return "<span>"_L1 + shown.toHtmlEscaped() + "</span>"_L1;
}

} // namespace varno

#include "kit/TextBlock.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace varno {
namespace {

constexpr QChar ellipsis(0x2026);

bool breaksLine(QChar character)
{
    return character == u'\n' || character == u'\r' || character == u'\v' || character == u'\f' ||
           character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

QString withLineBreaksAs(QChar replacement, QString text)
{
    text.replace(QLatin1StringView("\r\n"), QLatin1StringView("\n"));
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

} // namespace

TextBlock::TextBlock(const QString& text, const TextStyle& style, const QFont& font,
                     Overflow overflow, double width)
{
    const bool wraps = overflow == Overflow::wrap;
    QTextOption option(Qt::AlignLeft);
    option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(wraps ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    m_layout.setTextOption(option);
    m_layout.setFont(font);
    const QString prepared =
        withLineBreaksAs(wraps ? QChar(QChar::LineSeparator) : QChar(u' '), text);
    layOut(prepared, style, width);
    if (overflow == Overflow::elide && m_size.width() > width)
        elide(prepared, style, width);
}

void TextBlock::layOut(const QString& text, const TextStyle& style, double width)
{
    m_layout.setText(text);
    if (style.equalDigits)
        m_layout.setFormats(equalDigitFormats(text, m_layout.font(), style.tracking));
    m_size = {};
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(width + style.tracking);
        line.setPosition({0, m_size.height()});
        m_size = {std::max(m_size.width(), line.naturalTextWidth() - style.tracking),
                  m_size.height() + line.height()};
    }
    m_layout.endLayout();
}

void TextBlock::elide(const QString& text, const TextStyle& style, double width)
{
    const double room = width - QFontMetricsF(m_layout.font()).horizontalAdvance(ellipsis);
    QTextOption option = m_layout.textOption();
    option.setWrapMode(QTextOption::WrapAnywhere);
    m_layout.setTextOption(option);
    layOut(text, style, std::max(room, 0.0));
    QString kept = room > 0 ? text.first(m_layout.lineAt(0).textLength()) : QString();
    while (!kept.isEmpty() && kept.back().isSpace())
        kept.chop(1);
    option.setWrapMode(QTextOption::ManualWrap);
    m_layout.setTextOption(option);
    layOut(kept + ellipsis, style, width);
    m_elided = true;
}

void TextBlock::draw(QPainter& painter, const QRectF& place, Qt::Alignment alignment,
                     const QColor& color) const
{
    painter.setPen(color);
    const double spareHeight = place.height() - m_size.height();
    const double top = place.top() + (alignment.testFlag(Qt::AlignTop)      ? 0
                                      : alignment.testFlag(Qt::AlignBottom) ? spareHeight
                                                                            : spareHeight / 2);
    for (int index = 0; index < m_layout.lineCount(); ++index) {
        const QTextLine line = m_layout.lineAt(index);
        const double spare = place.width() - line.naturalTextWidth();
        const double left = place.left() + (alignment.testFlag(Qt::AlignRight)     ? spare
                                            : alignment.testFlag(Qt::AlignHCenter) ? spare / 2
                                                                                   : 0);
        line.draw(&painter, {left, std::round(top)});
    }
}

QString plainToolTip(const QString& text)
{
    return QLatin1StringView("<span>") + text.toHtmlEscaped() + QLatin1StringView("</span>");
}

} // namespace varno

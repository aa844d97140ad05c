#include "kit/TextStyle.h"

#include <QFontInfo>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// The system's font of emoji. The system would name it for some of them by itself, and draw others
/// from a font of plain symbols.
const QString& emojiFamily()
{
    static const QString family = QFontInfo(QFont(u"emoji"_s)).family();
    return family;
}

} // namespace

QFont font(const TextStyle& style)
{
    QFont font;
    if (style.design == FontDesign::serif) {
        font.setFamily(u"serif"_s);
        font.setStyleHint(QFont::Serif);
    }
    font.setPixelSize(std::max(1, qRound(style.size)));
    font.setWeight(style.weight);
    // By their own names: a name that stands for a family, such as "serif", takes no second one.
    font.setFamilies({QFontInfo(font).family(), emojiFamily()});
    if (style.tracking != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, style.tracking);
    return font;
}

} // namespace varno

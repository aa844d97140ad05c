#include "kit/TextStyle.h"

namespace varno {

QFont font(const TextStyle& style)
{
    QFont font;
    if (style.design == FontDesign::serif) {
        font.setFamily(QStringLiteral("serif"));
        font.setStyleHint(QFont::Serif);
    }
    font.setPixelSize(std::max(1, qRound(style.size)));
    font.setWeight(style.weight);
    if (style.tracking != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, style.tracking);
    return font;
}

} // namespace varno

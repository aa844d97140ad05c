#include "kit/ScriptDirection.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <algorithm>

namespace varno {
namespace {

bool isRightToLeft(uint character)
{
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

} // namespace

Qt::LayoutDirection scriptDirection(QStringView text)
{
    int leftToRight = 0;
    int rightToLeft = 0;
    const QList<uint> start = text.first(std::min(text.size(), directedStart)).toUcs4();
    for (const uint character : start) {
        if (QChar::direction(character) == QChar::DirL)
            ++leftToRight;
        else if (isRightToLeft(character))
            ++rightToLeft;
    }
    if (leftToRight == 0 && rightToLeft == 0)
        return Qt::LayoutDirectionAuto;
    return rightToLeft > leftToRight ? Qt::RightToLeft : Qt::LeftToRight;
}

void setWrittenDirection(QWidget& widget, QStringView text)
{
    const Qt::LayoutDirection direction = scriptDirection(text);
    if (direction == Qt::LayoutDirectionAuto)
        widget.unsetLayoutDirection();
    else
        widget.setLayoutDirection(direction);
}

bool hasRightToLeftLetters(QStringView text)
{
    const QList<uint> characters = text.toUcs4();
    return std::any_of(characters.begin(), characters.end(), isRightToLeft);
}

} // namespace varno

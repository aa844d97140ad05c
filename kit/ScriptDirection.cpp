#include "kit/ScriptDirection.h"

#include <QList>
#include <QString>

namespace varno {

Qt::LayoutDirection scriptDirection(QStringView text)
{
    int leftToRight = 0;
    int rightToLeft = 0;
    const QList<uint> start = text.first(std::min(text.size(), directedStart)).toUcs4();
    for (const uint character : start) {
        switch (QChar::direction(character)) {
        case QChar::DirL:
            ++leftToRight;
            break;
        case QChar::DirR:
        case QChar::DirAL:
            ++rightToLeft;
            break;
        default:
            break;
        }
    }
    if (leftToRight == 0 && rightToLeft == 0)
        return Qt::LayoutDirectionAuto;
    return rightToLeft > leftToRight ? Qt::RightToLeft : Qt::LeftToRight;
}

} // namespace varno

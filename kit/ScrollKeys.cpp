#include "kit/ScrollKeys.h"

#include <QKeyEvent>

namespace varno {

std::optional<QAbstractSlider::SliderAction> scrollAction(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool toTheEnds = event.key() == Qt::Key_Home || event.key() == Qt::Key_End;
    if (event.key() == Qt::Key_Space && modifiers == Qt::ShiftModifier)
        return QAbstractSlider::SliderPageStepSub;
    if (modifiers != Qt::NoModifier && !(toTheEnds && modifiers == Qt::ControlModifier))
        return {};
    switch (event.key()) {
    case Qt::Key_Up:
        return QAbstractSlider::SliderSingleStepSub;
    case Qt::Key_Down:
        return QAbstractSlider::SliderSingleStepAdd;
    case Qt::Key_PageUp:
        return QAbstractSlider::SliderPageStepSub;
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return QAbstractSlider::SliderPageStepAdd;
    case Qt::Key_Home:
        return QAbstractSlider::SliderToMinimum;
    case Qt::Key_End:
        return QAbstractSlider::SliderToMaximum;
    default:
        return {};
    }
}

} // namespace varno

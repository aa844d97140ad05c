#include "reader/ScrollKeys.h"

#include <QKeyEvent>

namespace varno {

std::optional<QAbstractSlider::SliderAction> scrollAction(const QKeyEvent& event)
{
    const bool shift = event.modifiers() == Qt::ShiftModifier;
    if (event.key() == Qt::Key_Space && shift)
        return QAbstractSlider::SliderPageStepSub;
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
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

#include "app/GlidingPlace.h"

#include <algorithm>

namespace varno {

GlidingPlace::GlidingPlace(AnimationSetting& setting, QWidget* parent)
    : QWidget(parent)
    , m_setting(setting)
    , m_glide(
          *this, [this](double height) { setFixedHeight(qRound(height)); }, setting)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void GlidingPlace::addPart(QWidget& part)
{
    m_parts.append(&part);
    part.setParent(this);
    part.hide();
}

void GlidingPlace::showPart(QWidget* part, int leastHeight)
{
    m_part = part;
    for (QWidget* each : m_parts)
        each->setVisible(each == part);
    fitPart();
    if (!isVisible())
        return; // until it is
    const int wanted = std::max(wantedHeight(), leastHeight);
    if (wanted == height() && !m_glide.isActive())
        return;
    if (m_setting.isEnabled())
        m_glide.start({.from = double(height()), .to = double(wanted)});
    else
        setFixedHeight(std::max(height(), wanted));
}

void GlidingPlace::fitPart()
{
    if (m_part)
        m_part->resize(width(), wantedHeight());
}

int GlidingPlace::wantedHeight() const
{
    return m_part ? m_part->sizeHint().height() : 0;
}

/// As wide as the widest part, whichever is on show.
QSize GlidingPlace::sizeHint() const
{
    int width = 0;
    for (const QWidget* part : m_parts)
        width = std::max(width, part->sizeHint().width());
    return {width, height()};
}

QSize GlidingPlace::minimumSizeHint() const
{
    int width = 0;
    for (const QWidget* part : m_parts)
        width = std::max(width, part->minimumSizeHint().width());
    return {width, height()};
}

void GlidingPlace::resizeEvent(QResizeEvent* /*event*/)
{
    fitPart();
}

void GlidingPlace::showEvent(QShowEvent* /*event*/)
{
    m_glide.stop();
    setFixedHeight(wantedHeight());
}

} // namespace varno

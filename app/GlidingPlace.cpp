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

void GlidingPlace::setPart(QWidget& part)
{
    m_part = &part;
    part.setParent(this);
}

void GlidingPlace::setPartVisible(bool visible)
{
    m_part->setVisible(visible);
    m_part->resize(width(), m_part->sizeHint().height());
    if (!isVisible())
        return; // until it is
    if (m_setting.isEnabled())
        m_glide.start({.from = double(height()), .to = double(wantedHeight())});
    else
        setFixedHeight(std::max(height(), wantedHeight()));
}

int GlidingPlace::wantedHeight() const
{
    return m_part->isHidden() ? 0 : m_part->sizeHint().height();
}

QSize GlidingPlace::sizeHint() const
{
    return {m_part->sizeHint().width(), height()};
}

QSize GlidingPlace::minimumSizeHint() const
{
    return {m_part->minimumSizeHint().width(), height()};
}

void GlidingPlace::resizeEvent(QResizeEvent* /*event*/)
{
    m_part->resize(width(), m_part->sizeHint().height());
}

void GlidingPlace::showEvent(QShowEvent* /*event*/)
{
    m_glide.stop();
    setFixedHeight(wantedHeight());
}

} // namespace varno

#pragma once

#include "kit/Animation.h"
#include "platform/Platform.h"

#include <QWidget>

namespace varno {

/// The place of a part that comes and goes, in a column that is centred: the column glides to where
/// it stands then. Where the desktop wants no motion it stays, with room for the part, until the
/// place is shown next.
class GlidingPlace final : public QWidget {
    Q_OBJECT

public:
    /// `setting` outlives the place.
    explicit GlidingPlace(AnimationSetting& setting = systemAnimationSetting(),
                          QWidget* parent = nullptr);

    /// Takes its part, once; owns it unless it is a member of another object.
    void setPart(QWidget& part);
    /// Shows the part, at its present height, or hides it.
    void setPartVisible(bool visible);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] int wantedHeight() const;

    QWidget* m_part = nullptr;
    AnimationSetting& m_setting;
    Animation m_glide;
};

} // namespace varno

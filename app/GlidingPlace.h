#pragma once

#include "kit/Animation.h"
#include "platform/Platform.h"

#include <QWidget>

namespace varno {

/// The place of parts that come and go, one at a time, in a column that is centred: the column
/// glides to where it stands then. Where the desktop wants no motion it stays, with room for the
/// part, until the place is shown next.
class GlidingPlace final : public QWidget {
    Q_OBJECT

public:
    /// `setting` outlives the place.
    explicit GlidingPlace(AnimationSetting& setting = systemAnimationSetting(),
                          QWidget* parent = nullptr);

    /// Takes a part, hidden; owns it unless it is a member of another object.
    void addPart(QWidget& part);
    /// Shows a part, at its present height, in place of another; null shows none. `leastHeight` is
    /// that of the place until it is shown next.
    void showPart(QWidget* part, int leastHeight = 0);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void fitPart();
    [[nodiscard]] int wantedHeight() const;

    QList<QWidget*> m_parts;
    QWidget* m_part = nullptr; ///< the one on show
    AnimationSetting& m_setting;
    Animation m_glide;
};

} // namespace varno

#pragma once

#include "kit/Animation.h"

#include <QPixmap>
#include <QPointer>
#include <QWidget>

namespace varno {

/// Animates the change of screens: a picture of the old screen fades over the new one, which is in
/// use already. It covers its parent while it runs.
class ScreenTransition final : public QWidget {
    Q_OBJECT

public:
    enum class Kind {
        fade,
        rise, ///< the new screen comes in from the bottom edge
        sink, ///< the old one leaves there
    };

    explicit ScreenTransition(QWidget* parent);

    /// `next` fills the parent, before and after.
    void start(const QPixmap& previous, QWidget& next, Kind kind);
    /// Ends the animation at once.
    void finish();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void show(double progress);

    QPixmap m_previous;
    QPointer<QWidget> m_next;
    Kind m_kind = Kind::fade;
    double m_progress = 1;
    Animation m_motion;
};

} // namespace varno

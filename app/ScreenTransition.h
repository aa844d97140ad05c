#pragma once

#include "kit/Animation.h"

#include <QPixmap>
#include <QPointer>
#include <QWidget>

namespace varno {

/// Leads from one screen to the next: a picture of the old one fades over the new one, which is in
/// use already. Covers its parent while it lasts.
class ScreenTransition final : public QWidget {
    Q_OBJECT

public:
    enum class Kind {
        fade,
        rise, ///< the new screen comes in from the bottom edge
        sink, ///< the old one leaves there
    };

    explicit ScreenTransition(QWidget* parent);

    /// `next` fills the parent, and does so again at the end.
    void start(const QPixmap& previous, QWidget& next, Kind kind);
    /// Goes to the end at once.
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

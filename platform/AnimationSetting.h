#pragma once

#include <QObject>

namespace varno {

/// Whether the desktop wants animations. Main thread only.
class AnimationSetting : public QObject {
    Q_OBJECT

public:
    /// Never blocks: the first call asks the desktop, and until it has answered, or if it does not
    /// know, the answer is yes.
    [[nodiscard]] virtual bool isEnabled() = 0;

Q_SIGNALS:
    /// After the desktop's first answer too, if it is no.
    void changed(bool enabled);
};

} // namespace varno

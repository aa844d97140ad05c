#pragma once

#include "platform/AnimationSetting.h"

namespace varno {

/// A desktop that wants animations until it is told otherwise.
class FakeAnimationSetting final : public AnimationSetting {
public:
    void set(bool enabled)
    {
        m_enabled = enabled;
        Q_EMIT changed(enabled);
    }

    [[nodiscard]] bool isEnabled() override { return m_enabled; }

private:
    bool m_enabled = true;
};

} // namespace varno

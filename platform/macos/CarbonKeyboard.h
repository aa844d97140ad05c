#pragma once

#include "platform/Keyboard.h"

#include <CoreFoundation/CoreFoundation.h>

namespace varno {

/// The keyboard by the layout in use, also while an input method is.
class CarbonKeyboard final : public Keyboard {
    Q_OBJECT

public:
    CarbonKeyboard();
    ~CarbonKeyboard() override;
    Q_DISABLE_COPY_MOVE(CarbonKeyboard)

    [[nodiscard]] QString character(int carbonKeyCode) const override;
    [[nodiscard]] std::optional<int> carbonKeyCode(const NativeKey& key) const override;
    [[nodiscard]] int carbonModifiers(Qt::KeyboardModifiers modifiers) const override;

private:
    static void onLayoutChange(CFNotificationCenterRef, void* keyboard, CFStringRef, const void*,
                               CFDictionaryRef);
};

} // namespace varno

#include "platform/macos/CarbonKeyboard.h"

#include "platform/CarbonModifiers.h"
#include "platform/macos/CoreFoundationValues.h"

#include <Carbon/Carbon.h>

#include <algorithm>
#include <array>

namespace varno {
namespace {

/// As events tell of modifiers, without the code of a key: their virtual key is that of A.
constexpr std::array modifierKeys = {
    Qt::Key_Shift, Qt::Key_Control, Qt::Key_Meta, Qt::Key_Alt, Qt::Key_CapsLock, Qt::Key_AltGr,
};

constexpr quint32 lastVirtualKey = 0x7F;

} // namespace

CarbonKeyboard::CarbonKeyboard()
{
    CFNotificationCenterAddObserver(CFNotificationCenterGetDistributedCenter(), this,
                                    &onLayoutChange, kTISNotifySelectedKeyboardInputSourceChanged,
                                    nullptr, CFNotificationSuspensionBehaviorDeliverImmediately);
}

CarbonKeyboard::~CarbonKeyboard()
{
    CFNotificationCenterRemoveObserver(CFNotificationCenterGetDistributedCenter(), this,
                                       kTISNotifySelectedKeyboardInputSourceChanged, nullptr);
}

QString CarbonKeyboard::character(int carbonKeyCode) const
{
    const CFOwned<TISInputSourceRef> source(TISCopyCurrentKeyboardLayoutInputSource());
    const auto* const data = source ? static_cast<CFDataRef>(TISGetInputSourceProperty(
                                          source.get(), kTISPropertyUnicodeKeyLayoutData))
                                    : nullptr;
    if (!data)
        return {};
    const auto* const layout = reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(data));
    UInt32 deadKeys = 0;
    UniCharCount count = 0;
    std::array<UniChar, 4> typed = {};
    const OSStatus status = UCKeyTranslate(
        layout, static_cast<UInt16>(carbonKeyCode), kUCKeyActionDisplay, 0, LMGetKbdType(),
        kUCKeyTranslateNoDeadKeysMask, &deadKeys, typed.size(), &count, typed.data());
    if (status != noErr)
        return {};
    const QString text = QString::fromUtf16(reinterpret_cast<const char16_t*>(typed.data()),
                                            static_cast<qsizetype>(count));
    const QList<uint> characters = text.toUcs4();
    const auto isShown = [](uint character) { return QChar::isPrint(character); };
    return std::ranges::all_of(characters, isShown) ? text : QString();
}

std::optional<int> CarbonKeyboard::carbonKeyCode(const NativeKey& key) const
{
    const bool isModifier = std::ranges::find(modifierKeys, key.key) != modifierKeys.end();
    if (isModifier || key.virtualKey > lastVirtualKey)
        return std::nullopt;
    return static_cast<int>(key.virtualKey);
}

/// The toolkit calls Command “Control” here, and Control “Meta”.
int CarbonKeyboard::carbonModifiers(Qt::KeyboardModifiers modifiers) const
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? carbonModifier::shift : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? carbonModifier::command : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? carbonModifier::option : 0) |
           (modifiers.testFlag(Qt::MetaModifier) ? carbonModifier::control : 0);
}

void CarbonKeyboard::onLayoutChange(CFNotificationCenterRef, void* keyboard, CFStringRef,
                                    const void*, CFDictionaryRef)
{
    Q_EMIT static_cast<CarbonKeyboard*>(keyboard)->layoutChanged();
}

} // namespace varno

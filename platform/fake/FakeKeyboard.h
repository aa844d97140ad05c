#pragma once

#include "platform/CarbonModifiers.h"
#include "platform/Keyboard.h"

#include <QHash>

namespace varno {

/// A keyboard that types what it is told to.
class FakeKeyboard final : public Keyboard {
public:
    static constexpr quint32 modifierScanCode = 0;

    static quint32 scanCode(int carbonKeyCode) { return static_cast<quint32>(carbonKeyCode) + 1; }

    void setCharacters(const QHash<int, QString>& characters)
    {
        m_characters = characters;
        Q_EMIT layoutChanged();
    }

    [[nodiscard]] QString character(int carbonKeyCode) const override
    {
        return m_characters.value(carbonKeyCode);
    }

    [[nodiscard]] std::optional<int> carbonKeyCode(const NativeKey& key) const override
    {
        return key.scanCode == modifierScanCode ? std::nullopt
                                                : std::optional(static_cast<int>(key.scanCode) - 1);
    }

    [[nodiscard]] int carbonModifiers(Qt::KeyboardModifiers modifiers) const override
    {
        return (modifiers.testFlag(Qt::ShiftModifier) ? carbonModifier::shift : 0) |
               (modifiers.testFlag(Qt::ControlModifier) ? carbonModifier::control : 0) |
               (modifiers.testFlag(Qt::AltModifier) ? carbonModifier::option : 0) |
               (modifiers.testFlag(Qt::MetaModifier) ? carbonModifier::command : 0);
    }

private:
    QHash<int, QString> m_characters;
};

} // namespace varno

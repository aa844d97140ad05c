#include "kit/TextField.h"

#include "kit/Menu.h"
#include "platform/ProgramKeys.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>
#include <array>

namespace varno {

std::unique_ptr<QKeyEvent> asControlKey(const QKeyEvent& event)
{
    constexpr std::array keys = {Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_X, Qt::Key_Z};
    const Qt::KeyboardModifiers others = event.modifiers() & ~Qt::MetaModifier;
    const bool isKnown = std::ranges::find(keys, event.key()) != keys.end();
    if (!controlStandsForCommand() || others == event.modifiers() ||
        (others & ~Qt::ShiftModifier) != Qt::NoModifier || !isKnown)
        return nullptr;
    return std::make_unique<QKeyEvent>(event.type(), event.key(), others | Qt::ControlModifier,
                                       QString(), event.isAutoRepeat());
}

void TextField::contextMenuEvent(QContextMenuEvent* event)
{
    if (QMenu* menu = createStandardContextMenu()) {
        setUpMenu(*menu, *this);
        menu->popup(event->globalPos());
    }
}

void TextField::keyPressEvent(QKeyEvent* event)
{
    if (const auto control = asControlKey(*event))
        QLineEdit::keyPressEvent(control.get());
    else if (controlStandsForCommand() && event->modifiers().testFlag(Qt::MetaModifier))
        event->ignore();
    else
        QLineEdit::keyPressEvent(event);
}

} // namespace varno

#include "platform/linux/CompositorKeyboard.h"

namespace varno {

CompositorKeyboard::CompositorKeyboard(LayerShell& shell)
{
    shell.watchKeyboard({.keymap = [this](const QByteArray& text) { take(text); },
                         .layout =
                             [this](quint32 group) {
                                 m_layout.group = group;
                                 Q_EMIT layoutChanged();
                             }});
}

void CompositorKeyboard::take(const QByteArray& keymap)
{
    m_layout.keymap.reset(xkb_keymap_new_from_buffer(
        m_layout.context.get(), keymap.constData(), std::size_t(keymap.size()),
        XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    Q_EMIT layoutChanged();
}

} // namespace varno

#include "platform/linux/WaylandKeyboard.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace varno {

WaylandKeyboard::WaylandKeyboard(WaylandOwned<wl_seat> seat)
    : m_seat(std::move(seat))
{
    // These listeners have what the first version of the seat tells, and no more.
    static constexpr wl_seat_listener listener = {
        .capabilities =
            [](void* keyboard, wl_seat*, quint32 capabilities) {
                auto& self = *static_cast<WaylandKeyboard*>(keyboard);
                self.m_keyboard.reset();
                if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0)
                    self.listen();
            },
        .name = nullptr,
    };
    wl_seat_add_listener(m_seat.get(), &listener, this);
}

void WaylandKeyboard::setWatcher(KeyboardWatcher watcher)
{
    m_watcher = std::move(watcher);
    m_watcher.layout(m_layout);
    if (!m_keymap.isEmpty())
        m_watcher.keymap(m_keymap);
}

void WaylandKeyboard::listen()
{
    static constexpr wl_keyboard_listener listener = {
        .keymap =
            [](void* keyboard, wl_keyboard*, quint32, int file, quint32 size) {
                static_cast<WaylandKeyboard*>(keyboard)->takeKeymap(file, size);
            },
        .enter = [](void*, wl_keyboard*, quint32, wl_surface*, wl_array*) {},
        .leave = [](void*, wl_keyboard*, quint32, wl_surface*) {},
        .key = [](void*, wl_keyboard*, quint32, quint32, quint32, quint32) {},
        .modifiers =
            [](void* keyboard, wl_keyboard*, quint32, quint32, quint32, quint32, quint32 group) {
                static_cast<WaylandKeyboard*>(keyboard)->takeLayout(group);
            },
        .repeat_info = nullptr,
    };
    m_keyboard.reset(wl_seat_get_keyboard(m_seat.get()));
    wl_keyboard_add_listener(m_keyboard.get(), &listener, this);
}

void WaylandKeyboard::takeKeymap(int file, quint32 size)
{
    void* const text = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    ::close(file);
    if (text == MAP_FAILED)
        return;
    const QByteArray keymap(
        static_cast<const char*>(text),
        static_cast<qsizetype>(::strnlen(static_cast<const char*>(text), size)));
    ::munmap(text, size);
    if (keymap == m_keymap)
        return;
    m_keymap = keymap;
    if (m_watcher.keymap)
        m_watcher.keymap(keymap);
}

void WaylandKeyboard::takeLayout(quint32 group)
{
    if (group != std::exchange(m_layout, group) && m_watcher.layout)
        m_watcher.layout(group);
}

} // namespace varno

#pragma once

#include <QTimer>

#include <chrono>

namespace varno {

/// Does what a showing need not wait for once the panel has long been painted: threads that begin
/// earlier take the processor from the window manager and the screen.
template <typename Receiver, typename Action>
void afterShowing(Receiver* receiver, Action action)
{
    QTimer::singleShot(std::chrono::milliseconds(50), receiver, action);
}

} // namespace varno

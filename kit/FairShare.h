#pragma once

#include <QList>

namespace varno {

/// The most that each gets of a room that all share, so that nobody has less while another has more
/// than that, and the room is used up; unlimited where there is room for all that is wanted.
[[nodiscard]] double fairShare(QList<double> wanted, double available);

} // namespace varno

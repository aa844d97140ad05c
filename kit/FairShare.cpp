#include "kit/FairShare.h"

#include <algorithm>
#include <limits>

namespace varno {

double fairShare(QList<double> wanted, double available)
{
    std::ranges::sort(wanted);
    double left = std::max(available, 0.0);
    for (qsizetype index = 0; index < wanted.size(); ++index) {
        const double share = left / static_cast<double>(wanted.size() - index);
        if (wanted[index] > share)
            return share;
        left -= wanted[index];
    }
    return std::numeric_limits<double>::max();
}

} // namespace varno

#include "core/network/network_backoff.h"

#include <algorithm>

namespace loadwarden {

void NetworkBackoff::record(bool stopped, double cost) {
    lastCost = cost;
    if (stopped) {
        factor = std::min(factor * 4.0, greatestFactor);
    } else if (cost > expensiveRunCPUSeconds) {
        factor = std::min(factor * 2.0, greatestFactor);
    } else {
        factor = std::max(factor * 0.5, leastFactor);
    }
}

} // namespace loadwarden

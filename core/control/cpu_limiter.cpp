#include "core/control/cpu_limiter.h"

#include <algorithm>
#include <cmath>

namespace loadwarden {

namespace {

double clampedShare(double share) {
    if (!std::isfinite(share)) {
        share = 1.0;
    }
    return std::clamp(share, CPULimiter::leastShare, CPULimiter::greatestShare);
}

} // namespace

CPULimiter::CPULimiter(double requested, std::optional<double> measured)
    : limit(std::isfinite(requested) ? std::max(requested, 1.0) : 1.0) {
    const bool known = measured && *measured > 0.0;
    runShare = clampedShare(known ? limit / *measured : limit / 100.0);
}

void CPULimiter::adjust(double measured) {
    const double share = measured > 0.5 ? runShare + (runShare * limit / measured - runShare) * 0.5
                                        : runShare * 1.25;
    runShare = clampedShare(share);
}

} // namespace loadwarden

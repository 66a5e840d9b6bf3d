#include "core/measurement/system_sample.h"

#include <numeric>

namespace loadwarden {

double SystemSample::cpu() const {
    if (coreUsage.empty()) {
        return 0.0;
    }
    return std::accumulate(coreUsage.begin(), coreUsage.end(), 0.0) /
           static_cast<double>(coreUsage.size());
}

} // namespace loadwarden

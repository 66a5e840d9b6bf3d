#include "core/measurement/series.h"

#include <algorithm>
#include <cmath>

namespace loadwarden {

Series::Series(std::size_t capacity, const std::vector<double>& initial)
    : capacity_(std::max<std::size_t>(capacity, 1)) {
    const std::size_t kept = std::min(initial.size(), capacity_);
    values_.reserve(capacity_);
    values_.assign(initial.end() - static_cast<std::ptrdiff_t>(kept), initial.end());
}

void Series::append(double value) {
    if (values_.size() == capacity_) {
        values_.erase(values_.begin());
    }
    values_.push_back(std::isfinite(value) ? value : 0.0);
}

} // namespace loadwarden

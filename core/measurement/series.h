#pragma once

#include "core/foundation/hashing.h"

#include <cstddef>
#include <tuple>
#include <vector>

namespace loadwarden {

// Fixed-capacity history behind a graph, oldest value first.
class Series {
public:
    static constexpr std::size_t graphCapacity = 60;

    explicit Series(std::size_t capacity = graphCapacity, const std::vector<double>& initial = {});

    // Non-finite values are stored as 0 so a graph never breaks on one bad reading.
    void append(double value);

    const std::vector<double>& values() const { return values_; }
    std::size_t capacity() const { return capacity_; }

    bool operator==(const Series&) const = default;
    auto fields() const { return std::tie(values_, capacity_); }

private:
    std::vector<double> values_;
    std::size_t capacity_;
};

} // namespace loadwarden

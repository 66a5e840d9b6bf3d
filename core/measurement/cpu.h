#pragma once

#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

namespace loadwarden {

// Cumulative ticks of one logical core since boot.
struct CPUTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    bool operator==(const CPUTicks&) const = default;
    auto fields() const { return std::tie(user, system, idle, nice); }
};

enum class CoreKind { performance, efficiency, standard };

template <>
struct RawValues<CoreKind> {
    static constexpr RawValueTable<CoreKind, 3> table{{
        {CoreKind::performance, "performance"},
        {CoreKind::efficiency, "efficiency"},
        {CoreKind::standard, "standard"},
    }};
};

namespace CPUMath {

// Busy fraction of every core between two readings; all zeros when the core
// count changed (or there is no previous reading).
std::vector<double> coreUsage(const std::vector<CPUTicks>& previous,
                              const std::vector<CPUTicks>& current);

// The kernel numbers efficiency cores first.
std::vector<CoreKind> coreKinds(int total, int performance, int efficiency);

// Mean usage of the cores of one kind, or of every core when no kind is given.
double average(const std::vector<double>& usage, const std::vector<CoreKind>& kinds,
               std::optional<CoreKind> kind = std::nullopt);

} // namespace CPUMath

} // namespace loadwarden

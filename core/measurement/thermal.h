#pragma once

#include "core/foundation/raw_value.h"

#include <string_view>

namespace loadwarden {

// The system's own thermal states, in its order.
enum class ThermalLevel { nominal, fair, serious, critical };

template <>
struct RawValues<ThermalLevel> {
    static constexpr RawValueTable<ThermalLevel, 4> table{{
        {ThermalLevel::nominal, "nominal"},
        {ThermalLevel::fair, "fair"},
        {ThermalLevel::serious, "serious"},
        {ThermalLevel::critical, "critical"},
    }};
};

constexpr std::string_view label(ThermalLevel level) {
    switch (level) {
    case ThermalLevel::nominal:
        return "Normal";
    case ThermalLevel::fair:
        return "Warm";
    case ThermalLevel::serious:
        return "Hot: slowed down";
    case ThermalLevel::critical:
        return "Very hot: slowed down";
    }
    return {};
}

} // namespace loadwarden

#pragma once

#include "core/history/usage_history.h"

#include <array>
#include <string>
#include <string_view>

namespace loadwarden {

// The App history table's figures, as the window and `loadwarden history` show them.
inline constexpr std::array<std::string_view, 5> usageColumnTitles{
    "CPU time", "Peak memory", "Energy", "Network", "Seen running"};

// In the order of usageColumnTitles; a dash for energy when the system gave none.
std::array<std::string, usageColumnTitles.size()> usageFigures(const UsageTotals& totals);

// The same totals as numbers, for sorting by a column.
std::array<double, usageColumnTitles.size()> usageAmounts(const UsageTotals& totals);

} // namespace loadwarden

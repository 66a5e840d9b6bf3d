#include "core/history/usage_figures.h"

#include "core/text/duration_format.h"
#include "core/text/units_format.h"

namespace loadwarden {

std::array<std::string, usageColumnTitles.size()> usageFigures(const UsageTotals& totals) {
    // No energy at all means the system gave no figure, as Linux never does.
    return {abbreviatedDuration(totals.cpuSeconds), formatBytes(totals.peakMemory),
            totals.energyJoules > 0 ? formatWattHours(totals.energyJoules) : std::string(noFigure),
            formatByteAmount(totals.networkBytes), abbreviatedDuration(totals.seenSeconds)};
}

std::array<double, usageColumnTitles.size()> usageAmounts(const UsageTotals& totals) {
    return {totals.cpuSeconds, static_cast<double>(totals.peakMemory), totals.energyJoules,
            totals.networkBytes, totals.seenSeconds};
}

} // namespace loadwarden

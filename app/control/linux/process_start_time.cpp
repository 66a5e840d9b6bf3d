#include "app/control/process_start_time.h"

#include "app/foundation/linux/start_date.h"
#include "app/sampling/linux/kernel_files.h"
#include "core/measurement/linux/process_files.h"

#include <string>
#include <unistd.h>

namespace loadwarden {

namespace {

std::optional<std::uint64_t> startTicks(std::int32_t pid) {
    const auto text = KernelFiles::text(KernelFiles::processFile(pid, "stat"));
    const auto stat = text ? ProcStat::parse(*text) : std::nullopt;
    if (!stat) {
        return std::nullopt;
    }
    return stat->startTicks;
}

} // namespace

std::optional<Date> processStartTime(std::int32_t pid) {
    static const double ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
    const auto ticks = startTicks(pid);
    return ticks ? std::optional(static_cast<double>(*ticks) / ticksPerSecond) : std::nullopt;
}

std::optional<Date> processStartDate(std::int32_t pid) {
    const auto ticks = startTicks(pid);
    return ticks ? std::optional(startDateFromTicks(*ticks)) : std::nullopt;
}

} // namespace loadwarden

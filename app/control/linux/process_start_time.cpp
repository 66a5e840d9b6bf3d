#include "app/control/process_start_time.h"

#include "app/sampling/linux/kernel_files.h"
#include "core/measurement/linux/process_files.h"

#include <string>
#include <unistd.h>

namespace loadwarden {

std::optional<Date> processStartTime(std::int32_t pid) {
    const auto text = KernelFiles::text(KernelFiles::processFile(pid, "stat"));
    const auto stat = text ? ProcStat::parse(*text) : std::nullopt;
    if (!stat) {
        return std::nullopt;
    }
    static const double ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
    return static_cast<double>(stat->startTicks) / ticksPerSecond;
}

} // namespace loadwarden

#include "app/control/process_start_time.h"

#include <libproc.h>
#include <sys/proc_info.h>

namespace loadwarden {

std::optional<Date> processStartTime(std::int32_t pid) {
    proc_bsdinfo info{};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof(info)) != sizeof(info)) {
        return std::nullopt;
    }
    return static_cast<double>(info.pbi_start_tvsec) +
           static_cast<double>(info.pbi_start_tvusec) / 1'000'000.0;
}

// The sampler dates a process by its BSD start time too.
std::optional<Date> processStartDate(std::int32_t pid) {
    return processStartTime(pid);
}

} // namespace loadwarden

#include "app/runner/spawn_platform.h"

#include <libproc.h>
#include <mach/mach_time.h>
#include <sys/resource.h>

namespace loadwarden::SpawnPlatform {

namespace {

// Turns the absolute-time units of proc_pid_rusage into nanoseconds (1 on
// Intel, 125/3 on Apple silicon).
double timebase() {
    static const double factor = [] {
        mach_timebase_info_data_t info{};
        mach_timebase_info(&info);
        return static_cast<double>(info.numer) /
               static_cast<double>(info.denom == 0 ? 1 : info.denom);
    }();
    return factor;
}

} // namespace

bool closeOtherDescriptors(posix_spawnattr_t& attributes, posix_spawn_file_actions_t&) {
    return posix_spawnattr_setflags(&attributes, static_cast<short>(POSIX_SPAWN_CLOEXEC_DEFAULT)) ==
           0;
}

std::optional<double> cpuSeconds(pid_t child) {
    rusage_info_v4 usage{};
    if (proc_pid_rusage(child, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&usage)) != 0) {
        return std::nullopt;
    }
    return timebase() * static_cast<double>(usage.ri_user_time + usage.ri_system_time) / 1e9;
}

} // namespace loadwarden::SpawnPlatform

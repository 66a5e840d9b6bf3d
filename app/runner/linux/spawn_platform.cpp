#include "app/runner/spawn_platform.h"

#include <ctime>
#include <unistd.h>

namespace loadwarden::SpawnPlatform {

bool closeOtherDescriptors(posix_spawnattr_t&, posix_spawn_file_actions_t& actions) {
    return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0;
}

// The child's CPU clock counts every thread in nanoseconds, unlike the
// tick-rounded figures of /proc/PID/stat.
std::optional<double> cpuSeconds(pid_t child) {
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(child, &clock) != 0 || clock_gettime(clock, &used) != 0) {
        return std::nullopt;
    }
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

} // namespace loadwarden::SpawnPlatform

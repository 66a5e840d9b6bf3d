#include "app/sampling/linux/process_clock.h"

#include "core/foundation/checked_arithmetic.h"

#include <ctime>

namespace loadwarden {

// The clock's id is made as the kernel defines it, as clock_getcpuclockid
// does but without its extra system call to learn whether the process
// exists: the reading tells that too.
std::optional<std::uint64_t> processCPUTimeNs(int pid) {
    constexpr clockid_t wholeProcess = 2; // CPUCLOCK_SCHED
    const clockid_t clock = static_cast<clockid_t>(~static_cast<unsigned>(pid) << 3) | wholeProcess;
    timespec used{};
    if (clock_gettime(clock, &used) != 0) {
        return std::nullopt;
    }
    return checkedAdd(checkedMultiply(static_cast<std::uint64_t>(used.tv_sec), 1'000'000'000),
                      static_cast<std::uint64_t>(used.tv_nsec));
}

} // namespace loadwarden

#include "app/foundation/linux/start_date.h"

#include "app/foundation/clock.h"

#include <cmath>
#include <ctime>
#include <unistd.h>

namespace loadwarden {

namespace {

Date bootDate() {
    timespec sinceBoot{};
    clock_gettime(CLOCK_BOOTTIME, &sinceBoot);
    return currentDate() -
           (static_cast<double>(sinceBoot.tv_sec) + static_cast<double>(sinceBoot.tv_nsec) / 1e9);
}

} // namespace

Date startDateFromTicks(std::uint64_t startTicks) {
    static const Date booted = bootDate();
    static const double ticksPerSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
    return std::round((booted + static_cast<double>(startTicks) / ticksPerSecond) * 1e6) / 1e6;
}

} // namespace loadwarden

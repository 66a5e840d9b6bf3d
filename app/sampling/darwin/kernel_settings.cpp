#include "app/sampling/darwin/kernel_settings.h"

#include <cstring>
#include <mach/mach_time.h>
#include <sys/sysctl.h>

namespace loadwarden {

std::int64_t KernelSettings::integer(const char* name) {
    std::int64_t value = 0;
    std::size_t size = sizeof value;
    if (sysctlbyname(name, &value, &size, nullptr, 0) != 0) {
        return 0;
    }
    if (size == sizeof(std::int32_t)) {
        std::int32_t narrow = 0;
        std::memcpy(&narrow, &value, sizeof narrow);
        return narrow;
    }
    return value;
}

double KernelSettings::timebase() {
    mach_timebase_info_data_t info{};
    mach_timebase_info(&info);
    return static_cast<double>(info.numer) / static_cast<double>(info.denom == 0 ? 1 : info.denom);
}

} // namespace loadwarden

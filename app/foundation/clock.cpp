#include "app/foundation/clock.h"

#include <chrono>
#include <time.h>

namespace loadwarden {

Date currentDate() {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

Seconds monotonicSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace loadwarden

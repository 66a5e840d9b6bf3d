#include "app/foundation/clock.h"

#include <chrono>

namespace loadwarden {

Date currentDate() {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

} // namespace loadwarden

#include "app/control/process_handle.h"

namespace loadwarden {

// macOS has no process descriptors: handles check the start time before each signal.
int ProcessDescriptor::open(std::int32_t) {
    return -1;
}

void ProcessDescriptor::close(int) {}

} // namespace loadwarden

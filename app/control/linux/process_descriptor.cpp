#include "app/control/process_handle.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace loadwarden {

// Kernels before 5.3 answer ENOSYS, and the handle checks start times instead.
int ProcessDescriptor::open(std::int32_t pid) {
    const long descriptor = syscall(SYS_pidfd_open, pid, 0);
    return descriptor >= 0 ? static_cast<int>(descriptor) : -1;
}

void ProcessDescriptor::close(int descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

} // namespace loadwarden

#include "app/sampling/linux/linux_backend.h"

namespace loadwarden {

std::unique_ptr<SamplerBackend> makePlatformBackend() {
    return std::make_unique<LinuxBackend>();
}

} // namespace loadwarden

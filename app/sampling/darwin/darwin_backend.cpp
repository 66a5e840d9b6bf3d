#include "app/sampling/darwin/darwin_backend.h"

namespace loadwarden {

std::unique_ptr<SamplerBackend> makePlatformBackend() {
    return std::make_unique<DarwinBackend>();
}

} // namespace loadwarden

// The drm- keys of /proc/PID/fdinfo: parseDrmFdinfo, and drmBusyByDevice
// over two readings of the clients found.
#include "core/measurement/linux/drm_fdinfo.h"
#include "tests/fuzz/fuzz_support.h"

namespace loadwarden {
namespace {

using fuzz::check;

std::vector<DrmClient> clientsIn(std::string_view text) {
    std::vector<DrmClient> clients;
    if (auto client = parseDrmFdinfo(text)) {
        clients.push_back(std::move(*client));
    }
    return clients;
}

} // namespace
} // namespace loadwarden

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace loadwarden;
    const auto [first, second] = fuzz::halves(fuzz::text(data, size));
    const auto before = clientsIn(first);
    const auto after = clientsIn(second);
    for (const auto& client : after) {
        for (const auto& [name, engine] : client.engines) {
            check(!name.empty(), "an engine has a name");
        }
    }
    for (const double elapsed : {0.0, 1e-9, 1.0}) {
        for (const auto& [device, busy] : drmBusyByDevice(before, after, elapsed)) {
            check(busy >= 0.0 && busy <= 1.0, "a device is busy between none and all the time");
        }
    }
    return 0;
}

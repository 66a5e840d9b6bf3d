// The drm- keys of /proc/PID/fdinfo: parseDrmFdinfo, and drmBusyByDevice
// over two readings of the clients found.
#include "core/measurement/linux/drm_fdinfo.h"
#include "tests/fuzz/fuzz_support.h"

namespace loadwarden {
namespace {

std::vector<DrmClient> clientsIn(std::string_view text) {
    std::vector<DrmClient> clients;
    if (auto client = parseDrmFdinfo(text)) {
        for (const auto& [name, engine] : client->engines) {
            fuzz::check(!name.empty(), "an engine has a name");
        }
        clients.push_back(std::move(*client));
    }
    return clients;
}

} // namespace

void fuzz::run(std::string_view text) {
    const auto [first, second] = halves(text);
    const auto before = clientsIn(first);
    const auto after = clientsIn(second);
    for (const double elapsed : {0.0, 1e-9, 1.0}) {
        for (const auto& [device, busy] : drmBusyByDevice(before, after, elapsed)) {
            check(isWithin(busy, 0.0, 1.0), "a device is busy between none and all the time");
        }
    }
}

} // namespace loadwarden

#pragma once

#include "app/sampling/linux/nvml_library.h"
#include "app/sampling/sampler_backend.h"
#include "core/measurement/linux/drm_fdinfo.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// Graphics processors on Linux: NVIDIA's through its management library;
// the others (amdgpu, i915, xe, …) through the engine time their DRM clients
// report in the user's own processes, and AMD's busy file besides. Only
// processes that hold a graphics device open are read on every tick; which
// ones those are is found once per process life.
class LinuxGraphics {
public:
    LinuxGraphics();
    explicit LinuxGraphics(std::unique_ptr<NvmlLibrary> nvml);

    // Each process's share of a graphics processor into its reading, and the
    // devices' busy shares for busy().
    void measure(std::vector<ProcessReading>& readings);
    // The busiest graphics processor at the last measure; absent where no
    // device reports one.
    std::optional<double> busy() const { return busy_; }

private:
    struct Client {
        Date started = 0.0;
        std::string command;
        std::vector<std::string> fdinfoPaths; // one per open graphics device file
        std::vector<DrmClient> clients;       // at the last reading
        Seconds readAt = 0.0;
        std::uint64_t measure = 0; // the last measure that had the process
    };

    Client& clientFor(const ProcessReading& reading);
    std::optional<double> drmPercent(Client& client, Seconds now,
                                     std::vector<DrmClient>& everyClient);
    std::optional<double> drmBusy(std::vector<DrmClient> everyClient, Seconds now);
    std::optional<double> amdBusy() const;

    std::unique_ptr<NvmlLibrary> nvml_;
    bool hasDrmDevices_ = false;
    std::vector<std::string> amdBusyFiles_;
    std::unordered_map<int, Client> processes_;
    std::uint64_t measure_ = 0; // counts the measures
    std::vector<DrmClient> previousClients_;
    std::optional<Seconds> previousAt_;
    std::optional<double> busy_;
};

} // namespace loadwarden

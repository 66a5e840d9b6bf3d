#pragma once

// Graphics engine time of DRM clients, from the drm- keys that the kernel's
// graphics drivers print in /proc/PID/fdinfo/FD for an open device file.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// One open graphics device file (a client) at one reading.
struct DrmClient {
    // The time one class of engine ("render", "video", "rcs", …) spent on
    // this client: nanoseconds, or, where the driver counts cycles, cycles
    // beside the engine's own clock over the same time (`clock`).
    struct Engine {
        std::uint64_t busy = 0;
        std::optional<std::uint64_t> clock;
        std::uint64_t capacity = 1; // engines of the class working side by side

        bool operator==(const Engine&) const = default;
    };

    std::string device;   // the PCI address (drm-pdev), else the driver's name
    std::uint64_t id = 0; // unique among the clients of one device
    std::map<std::string, Engine, std::less<>> engines;

    bool operator==(const DrmClient&) const = default;
};

// Absent when the text names no DRM client.
std::optional<DrmClient> parseDrmFdinfo(std::string_view text);

// How busy each device was between two readings of the same clients: by
// engine class, the clients' share of the wall time (or of the engine clock)
// added up and divided among the class's engines; the busiest class stands
// for the device. 0 to 1 per device. Clients in only one reading count
// from the next. elapsedSeconds: wall time between the readings.
std::map<std::string, double> drmBusyByDevice(const std::vector<DrmClient>& previous,
                                              const std::vector<DrmClient>& current,
                                              double elapsedSeconds);

} // namespace loadwarden

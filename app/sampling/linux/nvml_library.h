#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// NVIDIA's management library, loaded at run time so that the program starts
// on machines without it. Every figure it cannot give stays absent.
class NvmlLibrary {
public:
    // Absent when the library is missing or finds no driver.
    static std::unique_ptr<NvmlLibrary> load(const std::string& path = "libnvidia-ml.so.1");
    ~NvmlLibrary();
    NvmlLibrary(const NvmlLibrary&) = delete;
    NvmlLibrary& operator=(const NvmlLibrary&) = delete;

    // Busy share of each graphics processor over the driver's last sample
    // period, 0 to 1, one entry per device that answered.
    std::vector<double> deviceBusy();
    // Percent of one graphics processor's compute each process used since the
    // previous call, added over the devices; only processes the driver saw at work.
    std::map<std::int32_t, double> processPercent();

private:
    struct Api;
    NvmlLibrary(void* handle, std::unique_ptr<Api> api, std::vector<void*> devices);

    void* handle_;
    std::unique_ptr<Api> api_;
    std::vector<void*> devices_;
    std::vector<std::uint64_t> lastSeen_; // per device, the newest sample read, in µs
};

} // namespace loadwarden

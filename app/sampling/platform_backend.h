#pragma once

#include "app/sampling/sampler_backend.h"
#include "app/sampling/user_database.h"

#include <unistd.h>

namespace loadwarden {

// The backend of one platform: its process, system and graphics readers
// behind the sampler's interface. Users are looked up the same way everywhere.
template <typename Processes, typename System, typename Graphics>
class PlatformBackend final : public SamplerBackend {
public:
    std::uint32_t currentUID() override { return getuid(); }
    std::vector<ProcessReading> processes() override {
        auto readings = processes_.read();
        graphics_.measure(readings);
        return readings;
    }
    ProcessFacts facts(const ProcessReading& process) override { return processes_.facts(process); }
    std::optional<std::string> userName(std::uint32_t uid) override {
        return passwordDatabaseName(uid);
    }

    ProcessorReading processors() override { return system_.processors(); }
    MemoryStats memory() override { return system_.memory(); }
    std::optional<double> gpu() override { return graphics_.busy(); }
    std::optional<ByteCounters> diskCounters() override { return system_.diskCounters(); }
    std::optional<ByteCounters> interfaceCounters() override { return system_.interfaceCounters(); }
    std::optional<BatteryInfo> battery() override { return system_.battery(); }
    ThermalLevel thermal() override { return system_.thermal(); }
    bool lowPowerMode() override { return system_.lowPowerMode(); }
    Seconds uptime() override { return system_.uptime(); }
    std::optional<DiskSpace> diskSpace() override { return system_.diskSpace(); }

private:
    Processes processes_;
    System system_;
    Graphics graphics_;
};

} // namespace loadwarden

#pragma once

#include "app/darwin/darwin_processes.h"
#include "app/darwin/darwin_system.h"
#include "app/sampler_backend.h"

namespace loadwarden {

class DarwinBackend final : public SamplerBackend {
public:
    std::uint32_t currentUID() override;
    std::vector<ProcessReading> processes() override;
    ProcessFacts facts(const ProcessReading& process) override;
    std::optional<std::string> userName(std::uint32_t uid) override;

    ProcessorReading processors() override;
    MemoryStats memory() override;
    std::optional<double> gpu() override;
    std::optional<ByteCounters> diskCounters() override;
    std::optional<ByteCounters> interfaceCounters() override;
    std::optional<BatteryInfo> battery() override;
    ThermalLevel thermal() override;
    bool lowPowerMode() override;
    Seconds uptime() override;
    std::optional<DiskSpace> diskSpace() override;

private:
    DarwinProcesses processes_;
    DarwinSystem system_;
};

} // namespace loadwarden

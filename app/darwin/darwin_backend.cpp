#include "app/darwin/darwin_backend.h"

#include "app/darwin/foundation_figures.h"
#include "app/user_database.h"

#include <unistd.h>

namespace loadwarden {

std::unique_ptr<SamplerBackend> makePlatformBackend() {
    return std::make_unique<DarwinBackend>();
}

std::uint32_t DarwinBackend::currentUID() {
    return getuid();
}

std::vector<ProcessReading> DarwinBackend::processes() {
    return processes_.read();
}

ProcessFacts DarwinBackend::facts(const ProcessReading& process) {
    return processes_.facts(process);
}

std::optional<std::string> DarwinBackend::userName(std::uint32_t uid) {
    return passwordDatabaseName(uid);
}

ProcessorReading DarwinBackend::processors() {
    return system_.processors();
}

MemoryStats DarwinBackend::memory() {
    return system_.memory();
}

std::optional<double> DarwinBackend::gpu() {
    return system_.gpu();
}

std::optional<ByteCounters> DarwinBackend::diskCounters() {
    return system_.diskCounters();
}

std::optional<ByteCounters> DarwinBackend::interfaceCounters() {
    return system_.interfaceCounters();
}

std::optional<BatteryInfo> DarwinBackend::battery() {
    return system_.battery();
}

ThermalLevel DarwinBackend::thermal() {
    return FoundationFigures::thermalLevel();
}

bool DarwinBackend::lowPowerMode() {
    return FoundationFigures::lowPowerMode();
}

Seconds DarwinBackend::uptime() {
    return system_.uptime();
}

std::optional<DiskSpace> DarwinBackend::diskSpace() {
    return FoundationFigures::startupVolumeSpace();
}

} // namespace loadwarden

#include "app/linux/linux_backend.h"

#include "app/user_database.h"

#include <unistd.h>

namespace loadwarden {

std::unique_ptr<SamplerBackend> makePlatformBackend() {
    return std::make_unique<LinuxBackend>();
}

std::uint32_t LinuxBackend::currentUID() {
    return getuid();
}

std::vector<ProcessReading> LinuxBackend::processes() {
    return processes_.read();
}

ProcessFacts LinuxBackend::facts(const ProcessReading& process) {
    return processes_.facts(process);
}

std::optional<std::string> LinuxBackend::userName(std::uint32_t uid) {
    return passwordDatabaseName(uid);
}

ProcessorReading LinuxBackend::processors() {
    return system_.processors();
}

MemoryStats LinuxBackend::memory() {
    return system_.memory();
}

std::optional<double> LinuxBackend::gpu() {
    return system_.gpu();
}

std::optional<ByteCounters> LinuxBackend::diskCounters() {
    return system_.diskCounters();
}

std::optional<ByteCounters> LinuxBackend::interfaceCounters() {
    return system_.interfaceCounters();
}

std::optional<BatteryInfo> LinuxBackend::battery() {
    return system_.battery();
}

ThermalLevel LinuxBackend::thermal() {
    return system_.thermal();
}

bool LinuxBackend::lowPowerMode() {
    return system_.lowPowerMode();
}

Seconds LinuxBackend::uptime() {
    return system_.uptime();
}

std::optional<DiskSpace> LinuxBackend::diskSpace() {
    return system_.diskSpace();
}

} // namespace loadwarden

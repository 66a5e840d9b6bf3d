#include "app/sampling/linux/linux_graphics.h"

#include "app/foundation/clock.h"
#include "app/sampling/linux/kernel_files.h"
#include "core/text/text_parsing.h"

#include <algorithm>

namespace loadwarden {

namespace {

// The fdinfo files of a process's open graphics device files. Another
// user's descriptors cannot be listed, so their processes have none.
std::vector<std::string> graphicsFdinfoPaths(int pid) {
    std::vector<std::string> paths;
    const std::string fds = KernelFiles::processFile(pid, "fd");
    for (const auto& fd : KernelFiles::entries(fds)) {
        const auto target = KernelFiles::linkTarget(fds + "/" + fd);
        if (target && target->starts_with("/dev/dri/")) {
            paths.push_back(KernelFiles::processFile(pid, "fdinfo/" + fd));
        }
    }
    return paths;
}

// A process may hold one client through several descriptors, and children
// share their parent's: each client counts once.
void addOnce(std::vector<DrmClient>& clients, DrmClient client) {
    const bool known = std::ranges::any_of(clients, [&client](const DrmClient& other) {
        return other.id == client.id && other.device == client.device;
    });
    if (!known) {
        clients.push_back(std::move(client));
    }
}

double sumOf(const std::map<std::string, double>& byDevice) {
    double sum = 0.0;
    for (const auto& [_, busy] : byDevice) {
        sum += busy;
    }
    return sum;
}

double largestOf(const std::map<std::string, double>& byDevice) {
    double largest = 0.0;
    for (const auto& [_, busy] : byDevice) {
        largest = std::max(largest, busy);
    }
    return largest;
}

void keepLargest(std::optional<double>& largest, std::optional<double> candidate) {
    if (candidate) {
        largest = std::max(largest.value_or(0.0), *candidate);
    }
}

} // namespace

LinuxGraphics::LinuxGraphics() : LinuxGraphics(NvmlLibrary::load()) {}

LinuxGraphics::LinuxGraphics(std::unique_ptr<NvmlLibrary> nvml)
    : nvml_(std::move(nvml)), hasDrmDevices_(!KernelFiles::entries("/dev/dri").empty()) {
    for (const auto& card : KernelFiles::entriesStartingWith("/sys/class/drm", "card")) {
        if (KernelFiles::text(card + "/device/gpu_busy_percent")) {
            amdBusyFiles_.push_back(card + "/device/gpu_busy_percent");
        }
    }
}

void LinuxGraphics::measure(std::vector<ProcessReading>& readings) {
    const Seconds now = monotonicSeconds();
    const auto nvidia = nvml_ ? nvml_->processPercent() : std::map<std::int32_t, double>{};
    std::vector<DrmClient> everyClient;
    ++measure_;
    for (ProcessReading& reading : readings) {
        const int pid = reading.record.pid;
        std::optional<double> percent;
        if (hasDrmDevices_) {
            Client& client = clientFor(reading);
            client.measure = measure_;
            percent = drmPercent(client, reading.readAt.value_or(now), everyClient);
        }
        if (const auto found = nvidia.find(pid); found != nvidia.end()) {
            percent = percent.value_or(0.0) + found->second;
        }
        reading.gpuPercent = percent;
    }
    std::erase_if(processes_,
                  [this](const auto& entry) { return entry.second.measure != measure_; });

    busy_ = std::nullopt;
    if (nvml_) {
        for (const double device : nvml_->deviceBusy()) {
            keepLargest(busy_, device);
        }
    }
    keepLargest(busy_, drmBusy(std::move(everyClient), now));
    keepLargest(busy_, amdBusy());
}

LinuxGraphics::Client& LinuxGraphics::clientFor(const ProcessReading& reading) {
    const int pid = reading.record.pid;
    auto found = processes_.find(pid);
    // A new process, or a pid reused or a program exec'd since: look again.
    if (found == processes_.end() || found->second.started != reading.record.started ||
        found->second.command != reading.command) {
        Client fresh{.started = reading.record.started,
                     .command = reading.command,
                     .fdinfoPaths = graphicsFdinfoPaths(pid)};
        found = processes_.insert_or_assign(pid, std::move(fresh)).first;
    }
    return found->second;
}

std::optional<double> LinuxGraphics::drmPercent(Client& client, Seconds now,
                                                std::vector<DrmClient>& everyClient) {
    if (client.fdinfoPaths.empty()) {
        return std::nullopt;
    }
    std::vector<DrmClient> current;
    for (const auto& path : client.fdinfoPaths) {
        if (auto parsed = parseDrmFdinfo(KernelFiles::text(path).value_or(""))) {
            addOnce(current, std::move(*parsed));
        }
    }
    const bool first = client.clients.empty();
    const auto byDevice = drmBusyByDevice(client.clients, current, now - client.readAt);
    for (const auto& each : current) {
        addOnce(everyClient, each);
    }
    client.clients = std::move(current);
    client.readAt = now;
    if (first) {
        return std::nullopt; // a share needs two readings
    }
    return sumOf(byDevice) * 100.0;
}

std::optional<double> LinuxGraphics::drmBusy(std::vector<DrmClient> everyClient, Seconds now) {
    std::optional<double> busy;
    if (previousAt_ && !everyClient.empty()) {
        busy = largestOf(drmBusyByDevice(previousClients_, everyClient, now - *previousAt_));
    }
    previousClients_ = std::move(everyClient);
    previousAt_ = now;
    return busy;
}

std::optional<double> LinuxGraphics::amdBusy() const {
    std::optional<double> busiest;
    for (const auto& file : amdBusyFiles_) {
        const auto text = KernelFiles::text(file);
        if (const auto percent = parseInteger<int>(trimWhitespace(text.value_or("")))) {
            keepLargest(busiest, std::clamp(*percent, 0, 100) / 100.0);
        }
    }
    return busiest;
}

} // namespace loadwarden

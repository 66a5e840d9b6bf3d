#include "core/metrics/machine_metrics.h"

#include <optional>

namespace loadwarden {

namespace {

MetricFamily gauge(std::string name, std::string unit, std::string help) {
    return {"loadwarden_" + std::move(name), MetricType::gauge, std::move(unit), std::move(help),
            {}};
}

MetricFamily counter(std::string name, std::string unit, std::string help) {
    return {"loadwarden_" + std::move(name), MetricType::counter, std::move(unit),
            std::move(help), {}};
}

void addIf(MetricFamily& family, const MetricLabels& labels, std::optional<double> value) {
    if (value) {
        family.samples.push_back({labels, *value});
    }
}

std::string_view pressureName(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal:
        return "normal";
    case MemoryPressure::warning:
        return "warning";
    case MemoryPressure::critical:
        return "critical";
    }
    return "normal";
}

std::string_view sectionName(GroupKind kind) {
    switch (kind) {
    case GroupKind::app:
        return "app";
    case GroupKind::background:
        return "background";
    case GroupKind::system:
        return "system";
    }
    return "app";
}

// A state as one series per possible value, 1 for the current one.
template <typename Value, std::size_t count>
MetricFamily stateSet(MetricFamily family, const std::string& label,
                      const std::array<Value, count>& values, Value current,
                      std::string_view (*name)(Value)) {
    for (const Value value : values) {
        family.samples.push_back({{{label, std::string(name(value))}}, value == current ? 1.0 : 0.0});
    }
    return family;
}

void addSystem(std::vector<MetricFamily>& out, const MachineFigures& figures) {
    const SystemSample& system = figures.system;
    const UsageCounters::SystemTotals& totals = figures.counters.system();

    MetricFamily cpu = gauge("cpu_usage_ratio", "ratio", "Share of the whole processor in use.");
    cpu.samples.push_back({{}, system.cpu()});
    MetricFamily cores = gauge("cpu_core_usage_ratio", "ratio", "Share of each core in use.");
    for (std::size_t core = 0; core < system.coreUsage.size(); ++core) {
        const CoreKind kind =
            core < system.coreKinds.size() ? system.coreKinds[core] : CoreKind::standard;
        cores.samples.push_back(
            {{{"core", std::to_string(core)}, {"kind", std::string(rawValue(kind))}},
             system.coreUsage[core]});
    }
    out.push_back(std::move(cpu));
    out.push_back(std::move(cores));

    const MemoryStats& memory = system.memory;
    const auto single = [&out](MetricFamily family, std::optional<double> value) {
        addIf(family, {}, value);
        out.push_back(std::move(family));
    };
    single(gauge("memory_used_bytes", "bytes", "Memory in use, cached files not counted."),
           static_cast<double>(memory.used()));
    single(gauge("memory_total_bytes", "bytes", "Physical memory."),
           static_cast<double>(memory.total));
    out.push_back(stateSet(gauge("memory_pressure", "", "Memory pressure: 1 for the current level."),
                           "level",
                           std::array{MemoryPressure::normal, MemoryPressure::warning,
                                      MemoryPressure::critical},
                           memory.pressure, pressureName));
    single(gauge("swap_used_bytes", "bytes", "Swap in use."),
           static_cast<double>(memory.swapUsed));
    single(gauge("swap_total_bytes", "bytes", "Swap available."),
           static_cast<double>(memory.swapTotal));
    single(counter("disk_read_bytes", "bytes", "Bytes read from disk since the exporter started."),
           totals.diskReadBytes);
    single(counter("disk_written_bytes", "bytes",
                   "Bytes written to disk since the exporter started."),
           totals.diskWrittenBytes);
    single(counter("network_received_bytes", "bytes",
                   "Bytes received over the network since the exporter started."),
           totals.networkReceivedBytes);
    single(counter("network_sent_bytes", "bytes",
                   "Bytes sent over the network since the exporter started."),
           totals.networkSentBytes);
    single(gauge("battery_charge_ratio", "ratio", "Battery charge."),
           system.battery ? std::optional(system.battery->percent) : std::nullopt);
    out.push_back(stateSet(
        gauge("thermal_level", "", "How hot the machine runs: 1 for the current level."), "level",
        std::array{ThermalLevel::nominal, ThermalLevel::fair, ThermalLevel::serious,
                   ThermalLevel::critical},
        system.thermal, +[](ThermalLevel level) { return rawValue(level); }));
    single(gauge("gpu_usage_ratio", "ratio", "Share of the graphics processor in use."),
           system.gpu);
}

struct AppFamilies {
    MetricFamily cpu = counter("app_cpu_seconds", "seconds", "Processor time used by the app.");
    MetricFamily memory =
        gauge("app_resident_memory_bytes", "bytes", "Resident memory of the app's processes.");
    MetricFamily diskRead =
        counter("app_disk_read_bytes", "bytes", "Bytes the app's processes read from disk.");
    MetricFamily diskWritten =
        counter("app_disk_written_bytes", "bytes", "Bytes the app's processes wrote to disk.");
    MetricFamily networkReceived = counter("app_network_received_bytes", "bytes",
                                           "Bytes the app received over the network.");
    MetricFamily networkSent =
        counter("app_network_sent_bytes", "bytes", "Bytes the app sent over the network.");
    MetricFamily gpu =
        gauge("app_gpu_usage_ratio", "ratio", "Share of one graphics processor the app keeps busy.");
    MetricFamily processes = gauge("app_processes", "", "Number of the app's processes.");
    MetricFamily paused = gauge("app_paused", "", "1 while every process of the app is paused.");
    MetricFamily limited = gauge("app_limited", "", "1 while the app's processor use is limited.");

    void addTotals(const MetricLabels& labels, const UsageCounters::Totals& totals) {
        cpu.samples.push_back({labels, totals.cpuSeconds});
        addIf(diskRead, labels, totals.diskReadBytes);
        addIf(diskWritten, labels, totals.diskWrittenBytes);
        addIf(networkReceived, labels, totals.networkReceivedBytes);
        addIf(networkSent, labels, totals.networkSentBytes);
    }

    void moveInto(std::vector<MetricFamily>& out) {
        for (MetricFamily* family : {&cpu, &memory, &diskRead, &diskWritten, &networkReceived,
                                     &networkSent, &gpu, &processes, &paused, &limited}) {
            out.push_back(std::move(*family));
        }
    }
};

void addApps(std::vector<MetricFamily>& out, const MachineFigures& figures) {
    AppFamilies apps;
    std::uint64_t otherMemory = 0;
    std::size_t otherProcesses = 0;
    std::optional<double> otherGPU;
    bool anyOther = false;
    for (const ProcessGroup& group : figures.groups) {
        const UsageCounters::Totals* totals = figures.counters.app(group.id);
        if (!figures.counters.isShown(group.id) || totals == nullptr) {
            anyOther = true;
            otherMemory += group.totalMemory();
            otherProcesses += group.members.size();
            if (const auto gpu = group.totalGPU()) {
                otherGPU = otherGPU.value_or(0.0) + *gpu / 100.0;
            }
            continue;
        }
        const MetricLabels labels{
            {"app", group.id}, {"name", group.name}, {"section", std::string(sectionName(group.kind))}};
        apps.addTotals(labels, *totals);
        apps.memory.samples.push_back({labels, static_cast<double>(group.totalMemory())});
        if (const auto gpu = group.totalGPU()) {
            apps.gpu.samples.push_back({labels, *gpu / 100.0});
        }
        apps.processes.samples.push_back({labels, static_cast<double>(group.members.size())});
        apps.paused.samples.push_back({labels, group.isPaused() ? 1.0 : 0.0});
        apps.limited.samples.push_back({labels, figures.limits.contains(group.id) ? 1.0 : 0.0});
    }
    if (anyOther) {
        const MetricLabels labels{{"app", "other"}, {"name", "other"}, {"section", ""}};
        apps.addTotals(labels, figures.counters.other());
        apps.memory.samples.push_back({labels, static_cast<double>(otherMemory)});
        addIf(apps.gpu, labels, otherGPU);
        apps.processes.samples.push_back({labels, static_cast<double>(otherProcesses)});
    }
    apps.moveInto(out);
}

void addDiagnosis(std::vector<MetricFamily>& out, const MachineFigures& figures) {
    MetricFamily causes = gauge("cause_severity", "",
                                "Why the computer may be slow now: each cause's severity, 0 to 100.");
    for (const Cause& cause : figures.causes) {
        causes.samples.push_back(
            {{{"cause", std::string(rawValue(cause.kind))}, {"app", cause.appKey.value_or("")}},
             cause.score});
    }
    out.push_back(std::move(causes));

    MetricFamily alerts = counter("alerts_raised", "", "Alerts raised, by kind.");
    for (const AlertKind kind : allCases<AlertKind>()) {
        const auto raised = figures.alertsRaised.find(kind);
        alerts.samples.push_back({{{"kind", std::string(rawValue(kind))}},
                                  raised == figures.alertsRaised.end()
                                      ? 0.0
                                      : static_cast<double>(raised->second)});
    }
    out.push_back(std::move(alerts));
}

void addSelf(std::vector<MetricFamily>& out, const MachineFigures& figures) {
    MetricFamily cpu = counter("process_cpu_seconds", "seconds", "Processor time this program used.");
    MetricFamily memory =
        gauge("process_resident_memory_bytes", "bytes", "Resident memory of this program.");
    for (const ProcessGroup& group : figures.groups) {
        for (const LiveProcess& member : group.members) {
            if (member.record.pid == figures.selfPID) {
                cpu.samples.push_back({{}, static_cast<double>(member.record.cpuTimeNs) / 1e9});
                memory.samples.push_back({{}, static_cast<double>(member.record.memoryBytes)});
            }
        }
    }
    out.push_back(std::move(cpu));
    out.push_back(std::move(memory));
}

} // namespace

std::vector<MetricFamily> machineMetrics(const MachineFigures& figures) {
    std::vector<MetricFamily> families;
    addSystem(families, figures);
    MetricFamily processes = gauge("processes", "", "Number of processes.");
    std::size_t count = 0;
    for (const ProcessGroup& group : figures.groups) {
        count += group.members.size();
    }
    processes.samples.push_back({{}, static_cast<double>(count)});
    families.push_back(std::move(processes));
    addApps(families, figures);
    addDiagnosis(families, figures);
    addSelf(families, figures);
    return families;
}

} // namespace loadwarden

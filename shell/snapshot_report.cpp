#include "shell/snapshot_report.h"

#include "core/details/process_details.h"
#include "core/grouping/row_figures.h"
#include "core/text/duration_format.h"
#include "core/text/units_format.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace loadwarden {

namespace {

struct Column {
    std::string_view title;
    std::size_t width;
    bool rightAligned;
};

// PID, NAME, USER, CPU, MEMORY, DISK, NETWORK, GPU, THREADS, STATE.
constexpr std::array<Column, 10> columns{{
    {"PID", 7, true},
    {"NAME", 28, false},
    {"USER", 12, false},
    {"CPU", 7, true},
    {"MEMORY", 9, true},
    {"DISK", 11, true},
    {"NETWORK", 11, true},
    {"GPU", 6, true},
    {"THREADS", 7, true},
    {"STATE", 8, false},
}};

std::string fitted(std::string_view text, std::size_t width) {
    if (text.size() <= width) {
        return std::string(text);
    }
    return std::string(text.substr(0, width - 1)) + "~";
}

void printRow(const std::array<std::string, columns.size()>& cells, std::ostream& out) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string text = fitted(cells[i], columns[i].width);
        const std::string padding(columns[i].width - text.size(), ' ');
        line += columns[i].rightAligned ? padding + text : text + padding;
        line += i + 1 < columns.size() ? "  " : "";
    }
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    out << line << '\n';
}

void printProcessTable(const Snapshot& snapshot, std::ostream& out) {
    std::vector<const LiveProcess*> rows;
    for (const auto& process : snapshot.processes) {
        rows.push_back(&process);
    }
    std::sort(rows.begin(), rows.end(), [](const LiveProcess* a, const LiveProcess* b) {
        if (a->rates.cpuPercent != b->rates.cpuPercent) {
            return a->rates.cpuPercent > b->rates.cpuPercent;
        }
        if (a->record.memoryBytes != b->record.memoryBytes) {
            return a->record.memoryBytes > b->record.memoryBytes;
        }
        return a->record.pid < b->record.pid;
    });
    std::array<std::string, columns.size()> titles;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        titles[i] = columns[i].title;
    }
    printRow(titles, out);
    for (const LiveProcess* process : rows) {
        const auto fact = [process](ProcessFact which) { return factText(which, *process, {}); };
        const RowFigures figures = memberFigures(*process);
        const auto figure = [&figures](ProcessColumn column) {
            return figureOf(figures, column).text;
        };
        printRow({fact(ProcessFact::pid), fact(ProcessFact::name), fact(ProcessFact::user),
                  figure(ProcessColumn::cpu), figure(ProcessColumn::memory),
                  figure(ProcessColumn::disk), figure(ProcessColumn::network),
                  figure(ProcessColumn::gpu), fact(ProcessFact::threads), fact(ProcessFact::state)},
                 out);
    }
}

std::string percentOf(double fraction) {
    return formatPercent(fraction * 100.0);
}

std::string processorLine(const SystemSample& system) {
    std::string line = percentOf(system.cpu()) + " of " + std::to_string(system.coreUsage.size()) +
                       (system.coreUsage.size() == 1 ? " core" : " cores");
    const auto has = [&system](CoreKind kind) {
        return std::find(system.coreKinds.begin(), system.coreKinds.end(), kind) !=
               system.coreKinds.end();
    };
    if (has(CoreKind::performance) && has(CoreKind::efficiency)) {
        line +=
            " (performance " +
            percentOf(CPUMath::average(system.coreUsage, system.coreKinds, CoreKind::performance)) +
            ", efficiency " +
            percentOf(CPUMath::average(system.coreUsage, system.coreKinds, CoreKind::efficiency)) +
            ")";
    }
    return line;
}

std::string memoryLine(const MemoryStats& memory) {
    return formatBytes(memory.used()) + " of " + formatBytes(memory.total) + " used (" +
           percentOf(memory.usedFraction()) + "): apps " + formatBytes(memory.app) + ", wired " +
           formatBytes(memory.wired) + ", compressed " + formatBytes(memory.compressed) +
           "; cached " + formatBytes(memory.cached) + "; pressure " +
           std::string(label(memory.pressure));
}

std::string diskLine(const SystemSample& system) {
    std::string line = formatBytesPerSecond(system.diskReadPerSecond) + " read, " +
                       formatBytesPerSecond(system.diskWritePerSecond) + " written";
    if (system.diskFree && system.diskTotal) {
        line += "; " + formatBytes(*system.diskFree) + " free of " + formatBytes(*system.diskTotal);
    }
    return line;
}

std::string batteryLine(const std::optional<BatteryInfo>& battery) {
    if (!battery) {
        return "none";
    }
    std::string line = percentOf(battery->percent) + ", " + batteryStatusLine(battery);
    if (battery->cycleCount) {
        line += "; " + std::to_string(*battery->cycleCount) + " cycles";
    }
    if (battery->health) {
        line += "; health " + percentOf(*battery->health);
    }
    return line;
}

std::string processesLine(const Snapshot& snapshot, std::string_view networkCoverageNote) {
    std::string line = std::to_string(snapshot.processes.size());
    if (!snapshot.hasNetwork) {
        return line + "; per-process network not measured yet";
    }
    return networkCoverageNote.empty() ? line : line + "; " + std::string(networkCoverageNote);
}

void printSystemSummary(const Snapshot& snapshot, std::string_view networkCoverageNote,
                        std::ostream& out) {
    const SystemSample& system = snapshot.system;
    std::vector<std::pair<std::string_view, std::string>> lines{
        {"CPU", processorLine(system)},
        {"Memory", memoryLine(system.memory)},
        {"Swap", formatBytes(system.memory.swapUsed) + " of " +
                     formatBytes(system.memory.swapTotal) + " used"},
        {"Disk", diskLine(system)},
        {"Network", formatBytesPerSecond(system.networkInPerSecond) + " in, " +
                        formatBytesPerSecond(system.networkOutPerSecond) + " out"},
    };
    if (system.gpu) {
        lines.emplace_back("GPU", percentOf(*system.gpu));
    }
    lines.emplace_back("Battery", batteryLine(system.battery));
    lines.emplace_back("Thermal", std::string(label(system.thermal)));
    lines.emplace_back("Low Power", system.lowPowerMode ? "on" : "off");
    lines.emplace_back("Uptime", abbreviatedDuration(system.uptime));
    lines.emplace_back("Processes", processesLine(snapshot, networkCoverageNote));
    for (const auto& [title, text] : lines) {
        out << title << std::string(12 - title.size(), ' ') << text << '\n';
    }
}

} // namespace

void printSnapshotReport(const Snapshot& snapshot, std::string_view networkCoverageNote,
                         std::ostream& out) {
    printProcessTable(snapshot, out);
    out << '\n';
    printSystemSummary(snapshot, networkCoverageNote, out);
}

void printSnapshotJSON(const Snapshot& snapshot, std::ostream& out) {
    // Process names come from the processes themselves and may hold bytes
    // that are not UTF-8; they are replaced rather than fail the output.
    out << nlohmann::json(snapshot).dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
        << '\n';
}

} // namespace loadwarden

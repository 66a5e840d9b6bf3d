#include "core/model/performance_panels.h"

#include "core/text/duration_format.h"
#include "core/text/units_format.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

namespace loadwarden {

namespace {

// The least top a self-scaling graph has, so that a trickle does not fill it.
constexpr double leastRateTop = 1000.0;      // 1 KB/s
constexpr double leastSwapTop = 1'000'000.0; // 1 MB
constexpr double leastEnergyTop = 1.0;       // 1 W

// `readAt` lines up with the series from the newest value back; a series
// started afresh (a change of cores) is the shorter.
GraphPanel panel(std::string title, const Series& series, const Series& readAt,
                 std::optional<std::string> figure, double top = 1.0,
                 GraphUnit unit = GraphUnit::fraction) {
    GraphPanel result{.title = std::move(title),
                      .figure = std::move(figure),
                      .capacity = series.capacity(),
                      .top = top,
                      .unit = unit};
    if (result.figure) {
        result.values = series.values();
        const auto& dates = readAt.values();
        const std::size_t known = std::min(dates.size(), result.values.size());
        result.readAt.assign(dates.end() - static_cast<std::ptrdiff_t>(known), dates.end());
    }
    return result;
}

std::string inWords(GraphUnit unit, double value) {
    switch (unit) {
    case GraphUnit::fraction:
        return formatPercent(value * 100.0);
    case GraphUnit::bytes:
        return formatByteAmount(value);
    case GraphUnit::bytesPerSecond:
        return formatBytesPerSecond(value);
    case GraphUnit::watts:
        return formatWatts(value);
    }
    return {};
}

std::string percentOf(double fraction) {
    return formatPercent(fraction * 100.0);
}

double peakOf(const Series& series) {
    const auto& values = series.values();
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

// The least of 1, 2 or 5 times a power of ten at or above the peak, so the
// top reads as a round figure.
double roundTop(double peak, double least) {
    const double wanted = std::max(peak, least);
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    for (const double multiple : {1.0, 2.0, 5.0}) {
        if (multiple * power >= wanted) {
            return multiple * power;
        }
    }
    return 10.0 * power;
}

std::string memoryFigure(const MemoryStats& memory) {
    std::string pressure(label(memory.pressure));
    std::transform(pressure.begin(), pressure.end(), pressure.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return formatBytes(memory.used()) + " of " + formatBytes(memory.total) + " used · pressure " +
           pressure;
}

std::string swapFigure(const MemoryStats& memory) {
    if (memory.swapTotal == 0) {
        return formatBytes(memory.swapUsed) + " used";
    }
    return formatBytes(memory.swapUsed) + " of " + formatBytes(memory.swapTotal) + " used";
}

std::optional<std::string> batteryFigure(const std::optional<BatteryInfo>& battery) {
    if (!battery) {
        return std::nullopt;
    }
    const std::string status = batteryStatusLine(battery);
    return percentOf(battery->percent) + (status.empty() ? "" : " · " + status);
}

std::vector<CoreSection> coreSections(const Graphs& graphs, const SystemSample& sample) {
    static constexpr std::array<CoreKind, 3> order{CoreKind::performance, CoreKind::efficiency,
                                                   CoreKind::standard};
    // A sample without kinds (or with fewer than its cores) leaves the rest standard.
    const auto kindOf = [&](std::size_t core) {
        return core < sample.coreKinds.size() ? sample.coreKinds[core] : CoreKind::standard;
    };
    std::vector<CoreSection> sections;
    for (const CoreKind kind : order) {
        CoreSection section;
        for (std::size_t core = 0; core < graphs.cores.size(); ++core) {
            if (kindOf(core) != kind) {
                continue;
            }
            std::optional<std::string> figure;
            if (core < sample.coreUsage.size()) {
                figure = percentOf(sample.coreUsage[core]);
            }
            section.cores.push_back(panel("Core " + std::to_string(core + 1), graphs.cores[core],
                                          graphs.readAt, std::move(figure)));
        }
        if (!section.cores.empty()) {
            section.heading = kind == CoreKind::performance  ? "Performance cores"
                              : kind == CoreKind::efficiency ? "Efficiency cores"
                                                             : "Cores";
            sections.push_back(std::move(section));
        }
    }
    if (sections.size() == 1) {
        sections.front().heading = "Cores";
    }
    return sections;
}

} // namespace

std::string GraphPanel::scaleLabel(double share) const {
    return inWords(unit, top * share);
}

std::string GraphPanel::readout(std::size_t index) const {
    if (index >= values.size()) {
        return {};
    }
    std::string words = inWords(unit, values[index]);
    // Dates line up with the newest values; the oldest may have none.
    const std::size_t undated = values.size() - readAt.size();
    if (index >= undated) {
        const Seconds before = readAt.back() - readAt[index - undated];
        words += " · " + (before < 1.0 ? std::string("now") : abbreviatedDuration(before) + " ago");
    }
    return words;
}

PerformancePanels performancePanels(const Graphs& graphs, const SystemSample& sample,
                                    bool energyKnown) {
    const MemoryStats& memory = sample.memory;
    const double swapTop = memory.swapTotal > 0 ? static_cast<double>(memory.swapTotal)
                                                : roundTop(peakOf(graphs.swap), leastSwapTop);
    // Read and write, in and out, share a scale so that the pair compares at a glance.
    const double diskTop =
        roundTop(std::max(peakOf(graphs.diskRead), peakOf(graphs.diskWrite)), leastRateTop);
    const double networkTop =
        roundTop(std::max(peakOf(graphs.netIn), peakOf(graphs.netOut)), leastRateTop);
    const double energyTop = roundTop(peakOf(graphs.energy), leastEnergyTop);

    std::optional<std::string> gpuFigure;
    if (sample.gpu) {
        gpuFigure = percentOf(*sample.gpu);
    }
    std::optional<std::string> energyFigure;
    if (energyKnown) {
        const auto& watts = graphs.energy.values();
        energyFigure = formatWatts(watts.empty() ? 0.0 : watts.back());
    }

    PerformancePanels panels;
    panels.system = {
        panel("CPU", graphs.cpu, graphs.quickReadAt, percentOf(sample.cpu())),
        panel("Memory", graphs.memory, graphs.quickReadAt, memoryFigure(memory)),
        panel("Swap", graphs.swap, graphs.readAt, swapFigure(memory), swapTop, GraphUnit::bytes),
        panel("GPU", graphs.gpu, graphs.readAt, std::move(gpuFigure)),
        panel("Disk read", graphs.diskRead, graphs.readAt,
              formatBytesPerSecond(sample.diskReadPerSecond), diskTop, GraphUnit::bytesPerSecond),
        panel("Disk write", graphs.diskWrite, graphs.readAt,
              formatBytesPerSecond(sample.diskWritePerSecond), diskTop, GraphUnit::bytesPerSecond),
        panel("Network in", graphs.netIn, graphs.readAt,
              formatBytesPerSecond(sample.networkInPerSecond), networkTop,
              GraphUnit::bytesPerSecond),
        panel("Network out", graphs.netOut, graphs.readAt,
              formatBytesPerSecond(sample.networkOutPerSecond), networkTop,
              GraphUnit::bytesPerSecond),
        panel("Battery", graphs.battery, graphs.readAt, batteryFigure(sample.battery)),
        panel("Energy", graphs.energy, graphs.readAt, std::move(energyFigure), energyTop,
              GraphUnit::watts),
    };
    panels.cores = coreSections(graphs, sample);
    return panels;
}

} // namespace loadwarden

#include "core/grouping/process_group.h"

#include "core/foundation/checked_arithmetic.h"
#include "core/foundation/programming_error.h"
#include "core/text/platform_wording.h"

namespace loadwarden {

namespace {

template <typename Figure>
std::optional<double> optionalSum(const std::vector<LiveProcess>& members, Figure figure) {
    std::optional<double> sum;
    for (const auto& member : members) {
        if (const std::optional<double> value = figure(member.rates)) {
            sum = sum.value_or(0.0) + *value;
        }
    }
    return sum;
}

} // namespace

double ProcessGroup::totalCPU() const {
    double sum = 0.0;
    for (const auto& member : members) {
        sum += member.rates.cpuPercent;
    }
    return sum;
}

std::uint64_t ProcessGroup::totalMemory() const {
    std::uint64_t sum = 0;
    for (const auto& member : members) {
        sum = checkedAdd(sum, member.record.memoryBytes);
    }
    return sum;
}

std::optional<double> ProcessGroup::totalEnergy() const {
    return optionalSum(members, [](const ProcessRates& rates) { return rates.energyWatts; });
}

std::optional<double> ProcessGroup::totalDisk() const {
    return optionalSum(members, [](const ProcessRates& rates) { return rates.diskBytesPerSecond; });
}

std::optional<double> ProcessGroup::totalNetwork() const {
    return optionalSum(members, networkTotal);
}

std::optional<double> ProcessGroup::totalGPU() const {
    return optionalSum(members, [](const ProcessRates& rates) { return rates.gpuPercent; });
}

bool ProcessGroup::isPaused() const {
    bool anyOwn = false;
    for (const auto& member : members) {
        if (member.record.isOwn) {
            if (member.record.state != RunState::stopped) {
                return false;
            }
            anyOwn = true;
        }
    }
    return anyOwn;
}

std::optional<double> networkTotal(const ProcessRates& rates) {
    if (!rates.networkInPerSecond && !rates.networkOutPerSecond) {
        return std::nullopt;
    }
    return rates.networkInPerSecond.value_or(0.0) + rates.networkOutPerSecond.value_or(0.0);
}

std::string_view sectionTitle(GroupKind kind) {
    switch (kind) {
    case GroupKind::app:
        return "Apps";
    case GroupKind::background:
        return "Background processes";
    case GroupKind::system:
        return onThisPlatform("macOS processes (read-only)", "System processes (read-only)");
    }
    programmingError("unknown group kind");
}

} // namespace loadwarden

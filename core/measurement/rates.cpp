#include "core/measurement/rates.h"

#include "core/foundation/checked_arithmetic.h"

namespace loadwarden {

namespace {

constexpr double nanosecondsPerSecond = 1e9;

bool sameStart(Date a, Date b) {
    return a == b || a == 0.0 || b == 0.0;
}

double perSecond(std::uint64_t previous, std::uint64_t current, Seconds interval) {
    return static_cast<double>(counterDelta(previous, current)) / interval;
}

std::optional<double> diskRate(const ProcessCounters& previous, const ProcessCounters& current,
                               Seconds interval) {
    if (!previous.diskReadBytes || !previous.diskWrittenBytes || !current.diskReadBytes ||
        !current.diskWrittenBytes) {
        return std::nullopt;
    }
    const std::uint64_t bytes =
        checkedAdd(counterDelta(*previous.diskReadBytes, *current.diskReadBytes),
                   counterDelta(*previous.diskWrittenBytes, *current.diskWrittenBytes));
    return static_cast<double>(bytes) / interval;
}

std::optional<double> energyRate(const ProcessCounters& previous, const ProcessCounters& current,
                                 Seconds interval) {
    if (!previous.energyNJ || !current.energyNJ) {
        return std::nullopt;
    }
    return perSecond(*previous.energyNJ, *current.energyNJ, interval) / nanosecondsPerSecond;
}

void addNetworkRates(ProcessRates& rates, const std::optional<ProcessRecord>& previous,
                     const ProcessRecord& current,
                     const std::optional<NetworkBytes>& previousNetwork,
                     const std::optional<NetworkBytes>& currentNetwork, Seconds interval) {
    if (!currentNetwork) {
        return;
    }
    rates.networkInPerSecond = 0.0;
    rates.networkOutPerSecond = 0.0;
    const bool comparable = previousNetwork && previousNetwork->pid == currentNetwork->pid &&
                            previous && ProcessIdentity::sameStart(*previous, current);
    if (comparable) {
        rates.networkInPerSecond =
            perSecond(previousNetwork->bytesIn, currentNetwork->bytesIn, interval);
        rates.networkOutPerSecond =
            perSecond(previousNetwork->bytesOut, currentNetwork->bytesOut, interval);
    }
}

} // namespace

bool ProcessIdentity::sameStart(const ProcessRecord& a, const ProcessRecord& b) {
    return loadwarden::sameStart(a.started, b.started);
}

ProcessCounters ProcessCounters::of(const ProcessRecord& record) {
    return {.started = record.started,
            .cpuTimeNs = record.cpuTimeNs,
            .diskReadBytes = record.diskReadBytes,
            .diskWrittenBytes = record.diskWrittenBytes,
            .energyNJ = record.energyNJ};
}

ProcessRates Rates::compute(const std::optional<ProcessRecord>& previous,
                            const ProcessRecord& current,
                            const std::optional<NetworkBytes>& previousNetwork,
                            const std::optional<NetworkBytes>& currentNetwork, Seconds interval) {
    const auto before = previous ? std::optional(ProcessCounters::of(*previous)) : std::nullopt;
    ProcessRates rates =
        compute(before ? &*before : nullptr, ProcessCounters::of(current), interval);
    if (interval > 0.0) {
        addNetworkRates(rates, previous, current, previousNetwork, currentNetwork, interval);
    }
    return rates;
}

ProcessRates Rates::compute(const ProcessCounters* previous, const ProcessCounters& current,
                            Seconds interval) {
    ProcessRates rates;
    if (!(interval > 0.0)) {
        return rates;
    }
    if (previous && sameStart(previous->started, current.started)) {
        rates.cpuPercent = perSecond(previous->cpuTimeNs, current.cpuTimeNs, interval) /
                           nanosecondsPerSecond * 100.0;
        rates.diskBytesPerSecond = diskRate(*previous, current, interval);
        rates.energyWatts = energyRate(*previous, current, interval);
    } else {
        if (current.diskReadBytes && current.diskWrittenBytes) {
            rates.diskBytesPerSecond = 0.0;
        }
        if (current.energyNJ) {
            rates.energyWatts = 0.0;
        }
    }
    return rates;
}

} // namespace loadwarden

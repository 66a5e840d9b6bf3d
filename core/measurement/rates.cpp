#include "core/measurement/rates.h"

#include "core/foundation/checked_arithmetic.h"

namespace loadwarden {

bool ProcessIdentity::sameStart(const ProcessRecord& a, const ProcessRecord& b) {
    return a.started == b.started || a.started == 0.0 || b.started == 0.0;
}

namespace {

constexpr double nanosecondsPerSecond = 1e9;

double perSecond(std::uint64_t previous, std::uint64_t current, Seconds interval) {
    return static_cast<double>(counterDelta(previous, current)) / interval;
}

std::optional<double> diskRate(const ProcessRecord& previous, const ProcessRecord& current,
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

std::optional<double> energyRate(const ProcessRecord& previous, const ProcessRecord& current,
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

ProcessRates Rates::compute(const std::optional<ProcessRecord>& previous,
                            const ProcessRecord& current,
                            const std::optional<NetworkBytes>& previousNetwork,
                            const std::optional<NetworkBytes>& currentNetwork, Seconds interval) {
    ProcessRates rates;
    if (!(interval > 0.0)) {
        return rates;
    }
    if (previous && ProcessIdentity::sameStart(*previous, current)) {
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
    addNetworkRates(rates, previous, current, previousNetwork, currentNetwork, interval);
    return rates;
}

} // namespace loadwarden

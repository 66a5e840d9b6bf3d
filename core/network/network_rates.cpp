#include "core/network/network_rates.h"

#include "core/foundation/checked_arithmetic.h"

namespace loadwarden::NetworkRates {

NetworkRateMap compute(const NetworkSample& previous, const NetworkSample& current,
                       Seconds seconds) {
    NetworkRateMap rates;
    if (!(seconds > 0)) {
        return rates;
    }
    for (const auto& [pid, now] : current) {
        const auto before = previous.find(pid);
        if (before == previous.end() || before->second.name != now.name) {
            rates[pid] = NetworkRate{};
            continue;
        }
        rates[pid] = NetworkRate{
            .in = static_cast<double>(counterDelta(before->second.bytesIn, now.bytesIn)) / seconds,
            .out =
                static_cast<double>(counterDelta(before->second.bytesOut, now.bytesOut)) / seconds};
    }
    return rates;
}

std::optional<NetworkRate> rateOf(const MeasuredNetworkRates& rates, const ProcessRecord& process) {
    const auto found = rates.byPID.find(process.pid);
    if (found == rates.byPID.end()) {
        return std::nullopt;
    }
    if (process.started != 0.0 && process.started > rates.since) {
        return NetworkRate{};
    }
    return found->second;
}

} // namespace loadwarden::NetworkRates

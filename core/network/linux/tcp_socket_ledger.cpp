#include "core/network/linux/tcp_socket_ledger.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace loadwarden {

namespace {

// The counters come from outside text: a sum past 2^64 stops there instead of
// aborting or wrapping.
std::uint64_t saturatingAdd(std::uint64_t lhs, std::uint64_t rhs) {
    std::uint64_t sum = 0;
    return __builtin_add_overflow(lhs, rhs, &sum) ? std::numeric_limits<std::uint64_t>::max() : sum;
}

const SocketOwner& chooseOwner(const std::vector<SocketOwner>& owners,
                               std::optional<std::int32_t> previousOwner) {
    if (previousOwner) {
        const auto kept = std::find_if(owners.begin(), owners.end(), [&](const SocketOwner& o) {
            return o.pid == previousOwner;
        });
        if (kept != owners.end()) {
            return *kept;
        }
    }
    return *std::min_element(
        owners.begin(), owners.end(),
        [](const SocketOwner& a, const SocketOwner& b) { return a.pid < b.pid; });
}

} // namespace

NetworkSample TcpSocketLedger::record(const std::vector<SocketBytes>& sockets) {
    std::map<std::string, TrackedSocket> seen;
    NetworkSample totals;
    for (const SocketBytes& socket : sockets) {
        if (socket.owners.empty()) {
            continue;
        }
        std::string key = socket.local + " " + socket.peer;
        if (seen.contains(key)) {
            continue;
        }
        const auto before = sockets_.find(key);
        const bool known = before != sockets_.end();
        const SocketOwner& owner =
            chooseOwner(socket.owners, known ? std::optional(before->second.owner) : std::nullopt);
        // Counters that went down belong to a new connection on the same addresses.
        const bool continuing = known && socket.bytesIn >= before->second.bytesIn &&
                                socket.bytesOut >= before->second.bytesOut;
        const std::uint64_t grownIn =
            continuing ? socket.bytesIn - before->second.bytesIn : socket.bytesIn;
        const std::uint64_t grownOut =
            continuing ? socket.bytesOut - before->second.bytesOut : socket.bytesOut;

        auto [total, added] = totals.try_emplace(owner.pid);
        if (added) {
            const auto earlier = totals_.find(owner.pid);
            // A pid now used by a differently named program starts afresh.
            total->second = earlier != totals_.end() && earlier->second.name == owner.name
                                ? earlier->second
                                : NetworkBytes{.pid = owner.pid, .name = owner.name};
        }
        total->second.bytesIn = saturatingAdd(total->second.bytesIn, grownIn);
        total->second.bytesOut = saturatingAdd(total->second.bytesOut, grownOut);
        seen.emplace(std::move(key), TrackedSocket{.owner = owner.pid,
                                                   .bytesIn = socket.bytesIn,
                                                   .bytesOut = socket.bytesOut});
    }
    sockets_ = std::move(seen);
    totals_ = totals;
    return totals;
}

} // namespace loadwarden

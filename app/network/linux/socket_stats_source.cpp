#include "app/network/linux/socket_stats_source.h"

#include "app/runner/spawn.h"
#include "core/network/linux/socket_stats.h"

namespace loadwarden {

std::optional<std::string> SocketStatsSource::locate() {
    return Spawn::firstExecutableFile({"/usr/bin/ss", "/bin/ss", "/usr/sbin/ss", "/sbin/ss"});
}

SocketStatsSource::SocketStatsSource(std::string toolPath) : toolPath_(std::move(toolPath)) {}

// No header, numeric addresses (no service lookups), TCP only, with
// counters and inodes. Its own search for the owners (-p) would read every
// descriptor of every process on each run, which costs more than all the
// rest of a tick where processes are many.
std::vector<std::string> SocketStatsSource::arguments() const {
    return {"-H", "-n", "-t", "-i", "-e"};
}

// A listing with no sockets is still a reading: nobody has live connections.
std::optional<NetworkSample> SocketStatsSource::sample(std::string_view output) {
    return ledger_.record(SocketStats::parse(output, owners_.find()));
}

} // namespace loadwarden

#include "app/network/network_source.h"

#include "app/network/net_top_source.h"
#include "app/runner/spawn.h"
#ifndef __APPLE__
#include "app/network/linux/socket_stats_source.h"
#endif

namespace loadwarden {

std::unique_ptr<NetworkSource> systemNetworkSource() {
#ifdef __APPLE__
    if (Spawn::isExecutableFile(std::string(NetTopSource::location))) {
        return std::make_unique<NetTopSource>();
    }
#else
    if (auto tool = SocketStatsSource::locate()) {
        return std::make_unique<SocketStatsSource>(std::move(*tool));
    }
#endif
    return nullptr;
}

} // namespace loadwarden

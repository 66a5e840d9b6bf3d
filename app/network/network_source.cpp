#include "app/network/network_source.h"

#include "app/network/net_top_source.h"
#include "app/network/socket_stats_source.h"

#include <sys/stat.h>
#include <unistd.h>

namespace loadwarden {

std::unique_ptr<NetworkSource> systemNetworkSource() {
#ifdef __APPLE__
    if (isExecutableFile(std::string(NetTopSource::location))) {
        return std::make_unique<NetTopSource>();
    }
#else
    if (auto tool = SocketStatsSource::locate()) {
        return std::make_unique<SocketStatsSource>(std::move(*tool));
    }
#endif
    return nullptr;
}

bool isExecutableFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

} // namespace loadwarden

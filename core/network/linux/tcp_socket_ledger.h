#pragma once

#include "core/measurement/network_bytes.h"
#include "core/network/linux/socket_stats.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace loadwarden {

// Turns successive listings of live TCP sockets into per-process byte
// counters that only grow with real traffic. Summing the sockets afresh each
// time would not do: a process's sum drops whenever one of its connections
// closes, which would hide the traffic of all its others. So each socket's
// growth since the previous listing is added to the process that owns it;
// a socket first seen counts in full, as all its bytes are new. A socket
// several processes hold counts once, for the owner it had before (else the
// lowest pid), so ownership can move without a jump. A process appears while
// it holds live sockets; what a connection carried between the last listing
// and its closing is lost.
class TcpSocketLedger {
public:
    NetworkSample record(const std::vector<SocketBytes>& sockets);

private:
    struct TrackedSocket {
        std::int32_t owner = 0;
        std::uint64_t bytesIn = 0;
        std::uint64_t bytesOut = 0;
    };

    std::map<std::string, TrackedSocket> sockets_; // by local and peer address
    NetworkSample totals_;
};

} // namespace loadwarden

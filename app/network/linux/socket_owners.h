#pragma once

#include "app/sampling/linux/process_directory.h"
#include "core/network/linux/socket_stats.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// Which processes hold each socket, found by reading the descriptors of every
// process we may look into (our own user's, or all of them for root). A
// process whose clock has not moved since it was last read has opened and
// closed nothing, so it is not read again: where most processes sleep, a run
// reads only the few that ran. One running right now on another core may not
// have its latest moments counted yet; a socket it has just opened is then
// found on the next run, and counts in full as it first appears.
class SocketOwners {
public:
    // Valid until the next call.
    const SocketOwnersByInode& find();

private:
    struct Process {
        // Its folder's inode: another process under the same pid has another.
        std::uint64_t folder = 0;
        std::uint64_t cpuTimeNs = 0;
        std::vector<std::uint64_t> sockets; // each once, in order
        std::string name;
        std::uint64_t listing = 0; // the last listing that had it
    };

    static Process read(int pid, std::uint64_t folder, std::uint64_t cpuTimeNs);

    ProcessDirectory directory_;
    std::unordered_map<int, Process> processes_;
    std::uint64_t listing_ = 0;
    SocketOwnersByInode owners_;
};

} // namespace loadwarden

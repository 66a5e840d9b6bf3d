#pragma once

#include "core/foundation/hashing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// A process holding a socket open.
struct SocketOwner {
    std::int32_t pid = 0;
    std::string name;

    bool operator==(const SocketOwner&) const = default;
    auto fields() const { return std::tie(pid, name); }
};

// The byte counters of one live TCP connection. Several processes may hold
// the same socket (inherited across fork).
struct SocketBytes {
    std::string local; // address:port, as unique as the connection
    std::string peer;
    std::vector<SocketOwner> owners;
    std::uint64_t bytesIn = 0;  // received
    std::uint64_t bytesOut = 0; // sent and acknowledged by the peer

    bool operator==(const SocketBytes&) const = default;
    auto fields() const { return std::tie(local, peer, owners, bytesIn, bytesOut); }
};

// The processes that hold each socket, by the socket's inode.
using SocketOwnersByInode = std::unordered_map<std::uint64_t, std::vector<SocketOwner>>;

namespace SocketStats {

// Reads `ss -Hntie` (iproute2): a line per socket with its inode, its
// counters on the indented line after it. A socket's owners are those
// `owners` gives for its inode; sockets without any (other users') are left
// out, as is anything unreadable, socket by socket.
std::vector<SocketBytes> parse(std::string_view output, const SocketOwnersByInode& owners);

} // namespace SocketStats

} // namespace loadwarden

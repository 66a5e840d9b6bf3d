#pragma once

// Which sockets wait for others to connect: /proc/net/tcp, tcp6, udp and udp6.

#include <cstdint>
#include <map>
#include <string_view>

namespace loadwarden::ListeningSockets {

// Socket inode → local port, for the TCP sockets that listen (or, with
// `datagram`, the UDP sockets bound with no peer) in one of those tables.
std::map<std::uint64_t, std::uint16_t> parse(std::string_view table, bool datagram);

} // namespace loadwarden::ListeningSockets

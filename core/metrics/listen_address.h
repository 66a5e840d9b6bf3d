#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace loadwarden {

// Where an exporter listens for scrapes.
struct ListenAddress {
    // Outside the range 9100-9999 that exporters have long filled, and below
    // the ports the kernel hands out for outgoing connections.
    static constexpr std::uint16_t defaultPort = 21177;

    std::string host = "127.0.0.1"; // an address, brackets taken off an IPv6 one
    std::uint16_t port = defaultPort; // 0: any free port

    bool operator==(const ListenAddress&) const = default;
};

// "HOST:PORT" or "[IPV6]:PORT"; what was wrong in words otherwise. Whether
// HOST is an address is left to whoever binds it.
std::variant<ListenAddress, std::string> parseListenAddress(std::string_view text);

} // namespace loadwarden

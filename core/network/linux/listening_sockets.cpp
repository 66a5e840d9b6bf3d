#include "core/network/linux/listening_sockets.h"

#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

namespace loadwarden::ListeningSockets {

namespace {

constexpr std::string_view tcpListen = "0A";
constexpr std::string_view udpUnconnected = "07";

} // namespace

std::map<std::uint64_t, std::uint16_t> parse(std::string_view table, bool datagram) {
    std::map<std::uint64_t, std::uint16_t> listening;
    forEachLine(table, [&](std::string_view line) {
        // sl local_address rem_address st tx:rx tr:when retrnsmt uid timeout inode …
        const auto fields = splitFields(line);
        if (fields.size() < 10 || fields[3] != (datagram ? udpUnconnected : tcpListen)) {
            return;
        }
        const std::string_view local = fields[1];
        const auto colon = local.rfind(':');
        if (colon == std::string_view::npos) {
            return;
        }
        const auto port = parseInteger<std::uint16_t>(local.substr(colon + 1), 16);
        const auto inode = parseInteger<std::uint64_t>(fields[9]);
        if (port && inode && *inode != 0) {
            listening.emplace(*inode, *port);
        }
    });
    return listening;
}

} // namespace loadwarden::ListeningSockets

#include "core/metrics/listen_address.h"

#include "core/text/text_parsing.h"

#include <limits>

namespace loadwarden {

std::variant<ListenAddress, std::string> parseListenAddress(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return "needs ADDRESS:PORT, such as 127.0.0.1:" + std::to_string(ListenAddress::defaultPort);
    }
    std::string_view host = text.substr(0, colon);
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    } else if (host.find(':') != std::string_view::npos) {
        return "needs an IPv6 address in brackets, such as [::1]:" +
               std::to_string(ListenAddress::defaultPort);
    }
    if (host.empty()) {
        return "needs an address before the port";
    }
    const auto port = parseInteger<std::uint32_t>(text.substr(colon + 1));
    if (!port || *port > std::numeric_limits<std::uint16_t>::max()) {
        return "needs a port from 0 to 65535";
    }
    return ListenAddress{std::string(host), static_cast<std::uint16_t>(*port)};
}

} // namespace loadwarden

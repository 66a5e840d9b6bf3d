#include "core/network/linux/listening_sockets.h"

#include "core/text/text_parsing.h"

#include <charconv>
#include <vector>

namespace loadwarden::ListeningSockets {

namespace {

constexpr std::string_view tcpListen = "0A";
constexpr std::string_view udpUnconnected = "07";

template <typename Number>
std::optional<Number> parseNumber(std::string_view text, int base) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> fields;
    for (std::string_view field : splitKeepingEmpty(line, ' ')) {
        if (!field.empty()) {
            fields.push_back(field);
        }
    }
    return fields;
}

} // namespace

std::map<std::uint64_t, std::uint16_t> parse(std::string_view table, bool datagram) {
    std::map<std::uint64_t, std::uint16_t> listening;
    forEachLine(table, [&](std::string_view line) {
        // sl local_address rem_address st tx:rx tr:when retrnsmt uid timeout inode …
        const auto fields = words(line);
        if (fields.size() < 10 || fields[3] != (datagram ? udpUnconnected : tcpListen)) {
            return;
        }
        const std::string_view local = fields[1];
        const auto colon = local.rfind(':');
        if (colon == std::string_view::npos) {
            return;
        }
        const auto port = parseNumber<std::uint16_t>(local.substr(colon + 1), 16);
        const auto inode = parseNumber<std::uint64_t>(fields[9], 10);
        if (port && inode && *inode != 0) {
            listening.emplace(*inode, *port);
        }
    });
    return listening;
}

} // namespace loadwarden::ListeningSockets

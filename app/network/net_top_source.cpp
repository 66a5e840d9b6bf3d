#include "app/network/net_top_source.h"

#include "core/network/net_top_parser.h"

namespace loadwarden {

std::string NetTopSource::toolPath() const {
    return std::string(location);
}

std::vector<std::string> NetTopSource::arguments() const {
    return {"-P", "-x", "-J", "bytes_in,bytes_out", "-L", "1"};
}

// The tool prints no header after its last block; one more closes it.
std::optional<NetworkSample> NetTopSource::sample(std::string_view output) {
    NetTopParser parser;
    std::vector<NetworkSample> samples = parser.feed(std::string(output) + "time,\n");
    if (samples.empty()) {
        return std::nullopt;
    }
    return std::move(samples.back());
}

} // namespace loadwarden

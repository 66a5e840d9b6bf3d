#pragma once

#include "app/network/network_source.h"

namespace loadwarden {

// macOS: one short sample of nettop, per process, bytes in and out only.
class NetTopSource final : public NetworkSource {
public:
    static constexpr std::string_view location = "/usr/bin/nettop";

    std::string toolPath() const override;
    std::vector<std::string> arguments() const override;
    std::optional<NetworkSample> sample(std::string_view output) override;
    std::string_view coverageNote() const override { return {}; }
};

} // namespace loadwarden

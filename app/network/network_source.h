#pragma once

#include "core/measurement/network_bytes.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// An outside tool that reports cumulative network bytes per process, and how
// its output becomes a sample. Runs are never concurrent, so a source may keep
// state from one run to the next.
class NetworkSource {
public:
    virtual ~NetworkSource() = default;

    virtual std::string toolPath() const = 0;
    virtual std::vector<std::string> arguments() const = 0;
    // The sample in the output of a run that completed; nothing when the
    // output holds none.
    virtual std::optional<NetworkSample> sample(std::string_view output) = 0;
    // What the figures leave out, to be shown beside them; empty when they
    // cover everything.
    virtual std::string_view coverageNote() const = 0;
};

// This system's source, or nothing when its tool is not installed.
std::unique_ptr<NetworkSource> systemNetworkSource();

} // namespace loadwarden

#pragma once

#include "core/foundation/hashing.h"

#include <cstdint>
#include <tuple>
#include <vector>

namespace loadwarden {

// What a process has open: how many files (sockets and pipes included) and
// the ports it listens on, TCP and UDP, ascending.
struct FileInfo {
    int files = 0;
    std::vector<std::uint16_t> ports;

    bool operator==(const FileInfo&) const = default;
    auto fields() const { return std::tie(files, ports); }
};

} // namespace loadwarden

#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace loadwarden {

// What a process holds open: how many descriptors, and the inodes of the
// sockets among them, in descriptor order (a socket held twice is listed
// twice).
struct ProcessDescriptors {
    int files = 0;
    std::vector<std::uint64_t> sockets;
};

// Read from /proc/PID/fd; nothing when that folder cannot be read (another
// user's process, or one that has ended).
std::optional<ProcessDescriptors> readProcessDescriptors(std::int32_t pid);

} // namespace loadwarden

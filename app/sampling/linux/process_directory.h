#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// The directory /proc, held open for the life of the sampler: the pids in
// it and the owner of each process's folder. Listed on every tick, so its
// buffers are kept from one listing to the next.
class ProcessDirectory {
public:
    ProcessDirectory();
    ~ProcessDirectory();
    ProcessDirectory(const ProcessDirectory&) = delete;
    ProcessDirectory& operator=(const ProcessDirectory&) = delete;

    // A process's folder: its pid, and its inode, which stays the same while
    // the folder is the one of the same process.
    struct Entry {
        int pid = 0;
        std::uint64_t inode = 0;
    };

    // The numbered folders of /proc, in the kernel's order. Valid until the
    // next call.
    const std::vector<Entry>& processes();

    // The user that owns /proc/PID, which is the process's effective user;
    // nothing once the process has gone.
    std::optional<std::uint32_t> owner(int pid) const;

private:
    int fd_;
    std::vector<char> entries_;
    std::vector<Entry> processes_;
};

} // namespace loadwarden

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// Small reads of /proc and /sys, made without streams: a tick reads
// thousands of these files and their cost is the sampler's cost.
namespace KernelFiles {

// The whole file into `into` (reusing its storage); false when it cannot be
// opened or read, as when the process has ended or the file is not ours.
bool read(const std::string& path, std::string& into);

// The whole file as text; nothing when it cannot be read.
std::optional<std::string> text(const std::string& path);

// At most `count` bytes from the start of the file.
std::optional<std::string> head(const std::string& path, std::size_t count);

std::optional<std::string> linkTarget(const std::string& path);

// The user id that owns a file or directory.
std::optional<std::uint32_t> owner(const std::string& path);

// The names in a directory, without "." and "..".
std::vector<std::string> entries(const std::string& directory);

// The paths of a directory's entries whose names start with a prefix, sorted.
std::vector<std::string> entriesStartingWith(const std::string& directory,
                                             const std::string& prefix);

// "/proc/PID/name".
std::string processFile(int pid, std::string_view name);

// The numeric names in /proc: the pids.
std::vector<int> processIDs();

} // namespace KernelFiles

// A file of one process held open from tick to tick: opening a /proc file
// costs more than reading it. The open file stays bound to the process it was
// opened for; once that process is gone it reads nothing.
class KeptFile {
public:
    KeptFile() = default;
    ~KeptFile();
    KeptFile(KeptFile&& other) noexcept;
    KeptFile& operator=(KeptFile&& other) noexcept;

    // The whole file from its start into `into`. When the open file reads
    // nothing, it is opened again by path, which finds a new process that
    // took the pid. keep: whether it may stay open for the next tick.
    bool read(const std::string& path, std::string& into, bool keep);
    bool isOpen() const { return fd_ >= 0; }

private:
    void close();

    int fd_ = -1;
};

} // namespace loadwarden

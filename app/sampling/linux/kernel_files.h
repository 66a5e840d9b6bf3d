#pragma once

#include <array>
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

// The names in a directory, without "." and "..".
std::vector<std::string> entries(const std::string& directory);

// The paths of a directory's entries whose names start with a prefix, sorted.
std::vector<std::string> entriesStartingWith(const std::string& directory,
                                             const std::string& prefix);

// "/proc/PID/name".
std::string processFile(int pid, std::string_view name);

} // namespace KernelFiles

// "/proc/PID/name" made without the heap, for the files read on every tick.
class ProcessFilePath {
public:
    ProcessFilePath(int pid, std::string_view name);

    const char* c_str() const { return text_.data(); }
    std::string_view view() const { return {text_.data(), length_}; }

private:
    std::array<char, 64> text_{};
    std::size_t length_ = 0;
};

// A file of one process held open from tick to tick: opening a /proc file
// costs more than reading it. The open file stays bound to the process it was
// opened for; once that process is gone it reads nothing.
class KeptFile {
public:
    KeptFile() = default;
    ~KeptFile();
    KeptFile(KeptFile&& other) noexcept;
    KeptFile& operator=(KeptFile&& other) noexcept;

    // The whole file, read from its start into `buffer`, which keeps its
    // storage from one call to the next. The files of /proc/PID that are kept
    // are each written by the kernel in one piece, so one read that does not
    // fill the buffer has all of it. When the open file reads nothing, it is
    // opened again by path, which finds a new process that took the pid.
    // keep: whether it may stay open for the next tick. Nothing when it cannot
    // be opened or read, as when the process has ended or the file is not ours.
    std::optional<std::string_view> read(const ProcessFilePath& path, std::string& buffer,
                                         bool keep);
    bool isOpen() const { return fd_ >= 0; }

private:
    void close();

    int fd_ = -1;
};

} // namespace loadwarden

#pragma once

#include <optional>
#include <string>
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

// The numeric names in /proc: the pids.
std::vector<int> processIDs();

} // namespace KernelFiles

} // namespace loadwarden

#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden::Spawn {

struct Result {
    std::string output;      // raw bytes of the child's standard output, in order
    double cpuSeconds = 0.0; // user plus system time of the reaped child
    double seconds = 0.0;    // wall time from just before the spawn to the reaping
    bool stopped = false;    // killed for passing its time-out or CPU cap
    // A tool that fails still yields its output; absent when a signal ended it.
    std::optional<int> exitCode;
};

// Runs the executable at an absolute path (no shell, no search of PATH) with
// standard input and error on /dev/null, and returns what it wrote to
// standard output. A child past `timeout` wall seconds or `cpuLimit` CPU
// seconds is killed; without either limit it may run as long as it likes.
// Nothing when the child could not be started. Blocks until the child is
// reaped, so never call it on a thread that must stay responsive.
std::optional<Result> run(const std::string& path, const std::vector<std::string>& arguments,
                          std::optional<double> timeout, std::optional<double> cpuLimit);

// A regular file that this user may execute.
bool isExecutableFile(const std::string& path);

// The first of `paths` that is an executable file; nothing when none is.
std::optional<std::string> firstExecutableFile(std::initializer_list<std::string> paths);

// The wall-clock seconds a short tool is given.
inline constexpr double shortToolTimeout = 20.0;

// The output of a short tool as UTF-8 text (invalid bytes replaced), after at
// most `shortToolTimeout`; empty when the tool could not be started.
std::string text(const std::string& path, const std::vector<std::string>& arguments);

} // namespace loadwarden::Spawn

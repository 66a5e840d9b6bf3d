#pragma once

// Parsers for the per-process files under /proc. Pure: the backend reads the
// files, these turn their text into numbers.

#include "core/measurement/process_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// The fields of /proc/PID/stat that the sampler uses.
struct ProcStat {
    std::int32_t pid = 0;
    std::string comm; // the kernel cuts it at 15 bytes
    char state = '?';
    std::int32_t ppid = 0;
    std::uint64_t flags = 0;
    std::uint64_t userTicks = 0;
    std::uint64_t systemTicks = 0;
    int threads = 0;
    std::uint64_t startTicks = 0; // clock ticks after boot
    std::uint64_t residentPages = 0;

    // The command name may hold spaces and ')', so the fields after it are
    // found from the last ')'.
    static std::optional<ProcStat> parse(std::string_view text);

    bool isKernelThread() const;
};

RunState runStateFromProcLetter(char letter);

// The resident pages of /proc/PID/statm (its second field): what stat's
// resident pages count, summed exactly where stat's may lag a few pages
// behind, from a file the kernel writes far more cheaply.
std::optional<std::uint64_t> parseStatmResidentPages(std::string_view text);

// Storage-layer bytes from /proc/PID/io; both counters or nothing.
struct ProcIO {
    std::uint64_t readBytes = 0;
    std::uint64_t writeBytes = 0;
};
std::optional<ProcIO> parseProcIO(std::string_view text);

// argv[0] from the NUL-separated /proc/PID/cmdline.
std::string_view firstArgument(std::string_view cmdline);
// Every argument of it, argv[0] first.
std::vector<std::string> arguments(std::string_view cmdline);

// The target of /proc/PID/exe without the " (deleted)" mark of a replaced file.
std::string_view executablePathFromLink(std::string_view link);

// The instruction set of an executable from the first bytes of its ELF header.
Architecture architectureFromELFHeader(std::string_view header);

// A name that stays whole: the kernel's name, unless it was cut at 15 bytes
// and the program's own argv[0] or executable name continues it.
std::string processDisplayName(std::string_view comm, std::string_view argv0,
                               std::string_view executablePath);

} // namespace loadwarden

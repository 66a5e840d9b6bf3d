// ps output: PSLine::parse, parseOutput, parseTime and runStateFromField.
#include "core/measurement/ps_line.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstdio>

namespace loadwarden {
namespace {

using fuzz::check;

char stateLetter(RunState state) {
    switch (state) {
    case RunState::running:
        return 'R';
    case RunState::sleeping:
        return 'S';
    case RunState::stopped:
        return 'T';
    case RunState::zombie:
        return 'Z';
    case RunState::other:
        return '?';
    }
}

// The line ps would print for these values, its time in seconds with nine decimals.
std::string printed(const PSLine& line) {
    constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
    char time[48];
    std::snprintf(time, sizeof time, "%llu.%09llu",
                  static_cast<unsigned long long>(line.cpuTimeNs / nanosecondsPerSecond),
                  static_cast<unsigned long long>(line.cpuTimeNs % nanosecondsPerSecond));
    return std::to_string(line.pid) + ' ' + std::to_string(line.ppid) + ' ' +
           std::to_string(line.uid) + ' ' + std::to_string(line.rssBytes / 1024) + ' ' + time +
           ' ' + stateLetter(line.state) + ' ' + line.command;
}

// Times pass through a double, so a reprinted time may differ in its last bits.
bool sameTime(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t difference = a > b ? a - b : b - a;
    return difference <= 1 + std::max(a, b) / (std::uint64_t{1} << 40);
}

void checkReparses(const PSLine& line) {
    check(line.rssBytes % 1024 == 0, "resident size is whole kibibytes");
    check(runStateFromField(std::string(1, stateLetter(line.state))) == line.state,
          "state letter round trip");
    const auto again = PSLine::parse(printed(line));
    check(again.has_value(), "a parsed line, printed again, parses");
    check(again->pid == line.pid && again->ppid == line.ppid && again->uid == line.uid &&
              again->rssBytes == line.rssBytes && again->state == line.state &&
              again->command == line.command,
          "a parsed line, printed again, gives the same columns");
    check(sameTime(again->cpuTimeNs, line.cpuTimeNs), "a parsed line keeps its time");
}

} // namespace
} // namespace loadwarden

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace loadwarden;
    const std::string_view output = fuzz::text(data, size);

    for (const PSLine& line : PSLine::parseOutput(output)) {
        fuzz::check(line.command.find('\n') == std::string::npos, "a command stays on its line");
        checkReparses(line);
    }
    if (const auto line = PSLine::parse(output)) {
        checkReparses(*line);
    }
    PSLine::parseTime(output);
    runStateFromField(output);
    return 0;
}

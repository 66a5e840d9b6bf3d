// ps output: PSLine::parse, parseOutput, parseTime and runStateFromField.
#include "core/measurement/ps_line.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstdio>

namespace loadwarden {
namespace {

using fuzz::check;

// ps's letter for each state, in the order RunState lists them.
char stateLetter(RunState state) {
    return "RSTZ?"[static_cast<int>(state)];
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
    auto again = PSLine::parse(printed(line));
    check(again && sameTime(again->cpuTimeNs, line.cpuTimeNs),
          "a parsed line, printed again, parses and keeps its time");
    again->cpuTimeNs = line.cpuTimeNs;
    check(*again == line, "a parsed line, printed again, gives the same columns");
}

} // namespace

void fuzz::run(std::string_view output) {
    for (const PSLine& line : PSLine::parseOutput(output)) {
        check(line.command.find('\n') == std::string::npos, "a command stays on its line");
        checkReparses(line);
    }
    if (const auto line = PSLine::parse(output)) {
        checkReparses(*line);
    }
    PSLine::parseTime(output);
    runStateFromField(output);
}

} // namespace loadwarden

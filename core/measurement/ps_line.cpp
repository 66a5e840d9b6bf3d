#include "core/measurement/ps_line.h"

#include "core/text/text_parsing.h"

#include <array>
#include <cmath>

namespace loadwarden {

namespace {

constexpr std::size_t columnsBeforeCommand = 6;
constexpr std::uint64_t bytesPerKibibyte = 1024;

void skipSpaces(std::string_view& text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
}

// Splits off the six leading columns; each must be followed by a space, so a
// line that stops after the state has no command and does not parse.
std::optional<std::array<std::string_view, columnsBeforeCommand>>
splitColumns(std::string_view& rest) {
    std::array<std::string_view, columnsBeforeCommand> columns;
    for (auto& column : columns) {
        skipSpaces(rest);
        const std::size_t end = rest.find(' ');
        if (rest.empty() || end == std::string_view::npos) {
            return std::nullopt;
        }
        column = rest.substr(0, end);
        rest.remove_prefix(end);
    }
    return columns;
}

} // namespace

RunState runStateFromField(std::string_view field) {
    if (field.empty()) {
        return RunState::other;
    }
    switch (field.front()) {
    case 'R':
        return RunState::running;
    case 'S':
    case 'I':
        return RunState::sleeping;
    case 'T':
        return RunState::stopped;
    case 'Z':
        return RunState::zombie;
    default:
        return RunState::other;
    }
}

std::optional<std::uint64_t> PSLine::parseTime(std::string_view field) {
    double seconds = 0.0;
    if (const std::size_t hyphen = field.find('-'); hyphen != std::string_view::npos) {
        const auto days = parseDecimal(field.substr(0, hyphen));
        if (!days) {
            return std::nullopt;
        }
        seconds = *days * 86400.0;
        field.remove_prefix(hyphen + 1);
    }
    std::vector<std::string_view> pieces;
    for (std::string_view piece : splitKeepingEmpty(field, ':')) {
        if (!piece.empty()) {
            pieces.push_back(piece);
        }
    }
    if (pieces.empty() || pieces.size() > 3) {
        return std::nullopt;
    }
    double clock = 0.0;
    for (std::string_view piece : pieces) {
        const auto value = parseDecimal(piece);
        if (!value) {
            return std::nullopt;
        }
        clock = clock * 60.0 + *value;
    }
    const double nanoseconds = std::trunc((seconds + clock) * 1e9);
    // 2^64 is exactly representable; anything at or above it cannot be a real time.
    if (!(nanoseconds < 18446744073709551616.0)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(nanoseconds);
}

std::optional<PSLine> PSLine::parse(std::string_view line) {
    std::string_view rest = line;
    const auto columns = splitColumns(rest);
    if (!columns) {
        return std::nullopt;
    }
    const auto pid = parseInteger<std::int32_t>((*columns)[0]);
    const auto ppid = parseInteger<std::int32_t>((*columns)[1]);
    const auto uid = parseInteger<std::uint32_t>((*columns)[2]);
    const auto rssKibibytes = parseInteger<std::uint64_t>((*columns)[3]);
    const auto cpuTime = parseTime((*columns)[4]);
    std::uint64_t rssBytes = 0;
    if (!pid || !ppid || !uid || !rssKibibytes || !cpuTime ||
        __builtin_mul_overflow(*rssKibibytes, bytesPerKibibyte, &rssBytes)) {
        return std::nullopt;
    }
    return PSLine{
        .pid = *pid,
        .ppid = *ppid,
        .uid = *uid,
        .rssBytes = rssBytes,
        .cpuTimeNs = *cpuTime,
        .state = runStateFromField((*columns)[5]),
        .command = std::string(trimWhitespace(rest)),
    };
}

std::vector<PSLine> PSLine::parseOutput(std::string_view output) {
    std::vector<PSLine> lines;
    forEachLine(output, [&lines](std::string_view line) {
        if (auto parsed = parse(line)) {
            lines.push_back(std::move(*parsed));
        }
    });
    return lines;
}

} // namespace loadwarden

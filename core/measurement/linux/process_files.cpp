#include "core/measurement/linux/process_files.h"

#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <array>

namespace loadwarden {

namespace {

constexpr std::uint64_t kernelThreadFlag = 0x00200000; // PF_KTHREAD
constexpr std::size_t kernelNameLimit = 15;

std::string_view baseName(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

} // namespace

std::optional<ProcStat> ProcStat::parse(std::string_view text) {
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    // Fields are numbered as in proc_pid_stat(5); the state is field 3. Read
    // for every process on every tick, so the fields are looked at in place.
    constexpr std::size_t first = 3;
    constexpr std::size_t last = 24;
    std::array<std::string_view, last - first + 1> fields;
    FieldCursor cursor(text.substr(close + 1));
    for (auto& each : fields) {
        each = cursor.next();
        if (each.empty()) {
            return std::nullopt;
        }
    }
    auto field = [&fields](std::size_t number) { return fields[number - first]; };
    if (field(3).size() != 1) {
        return std::nullopt;
    }
    const auto pid = parseInteger<std::int32_t>(trimWhitespace(text.substr(0, open)));
    const auto ppid = parseInteger<std::int32_t>(field(4));
    const auto flags = parseInteger<std::uint64_t>(field(9));
    const auto user = parseInteger<std::uint64_t>(field(14));
    const auto system = parseInteger<std::uint64_t>(field(15));
    const auto threads = parseInteger<int>(field(20));
    const auto start = parseInteger<std::uint64_t>(field(22));
    const auto resident = parseInteger<std::int64_t>(field(24));
    if (!pid || !ppid || !flags || !user || !system || !threads || !start || !resident) {
        return std::nullopt;
    }
    return ProcStat{
        .pid = *pid,
        .comm = std::string(text.substr(open + 1, close - open - 1)),
        .state = field(3)[0],
        .ppid = *ppid,
        .flags = *flags,
        .userTicks = *user,
        .systemTicks = *system,
        .threads = *threads,
        .startTicks = *start,
        .residentPages = *resident > 0 ? static_cast<std::uint64_t>(*resident) : 0,
    };
}

bool ProcStat::isKernelThread() const {
    return (flags & kernelThreadFlag) != 0;
}

RunState runStateFromProcLetter(char letter) {
    switch (letter) {
    case 'R':
        return RunState::running;
    case 'S':
    case 'I':
        return RunState::sleeping;
    case 'T':
    case 't':
        return RunState::stopped;
    case 'Z':
        return RunState::zombie;
    default:
        return RunState::other;
    }
}

std::optional<std::uint64_t> parseStatmResidentPages(std::string_view text) {
    FieldCursor cursor(text);
    if (cursor.next().empty()) {
        return std::nullopt;
    }
    return parseInteger<std::uint64_t>(cursor.next());
}

std::optional<ProcIO> parseProcIO(std::string_view text) {
    const auto read = parseInteger<std::uint64_t>(keyedValue(text, "read_bytes"));
    const auto written = parseInteger<std::uint64_t>(keyedValue(text, "write_bytes"));
    if (!read || !written) {
        return std::nullopt;
    }
    return ProcIO{.readBytes = *read, .writeBytes = *written};
}

std::string_view firstArgument(std::string_view cmdline) {
    return cmdline.substr(0, cmdline.find('\0'));
}

std::vector<std::string> arguments(std::string_view cmdline) {
    std::vector<std::string> words;
    for (std::size_t start = 0; start < cmdline.size();) {
        const std::size_t end = std::min(cmdline.find('\0', start), cmdline.size());
        words.emplace_back(cmdline.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

std::string_view executablePathFromLink(std::string_view link) {
    constexpr std::string_view deleted = " (deleted)";
    if (link.size() > deleted.size() && link.substr(link.size() - deleted.size()) == deleted) {
        link.remove_suffix(deleted.size());
    }
    return link;
}

Architecture architectureFromELFHeader(std::string_view header) {
    if (header.size() < 20 || header.substr(0, 4) != "\x7f"
                                                     "ELF") {
        return Architecture::unknown;
    }
    const auto low = static_cast<unsigned char>(header[18]);
    const auto high = static_cast<unsigned char>(header[19]);
    const bool bigEndian = header[5] == 2;
    const unsigned machine = bigEndian ? (low << 8) | high : (high << 8) | low;
    switch (machine) {
    case 3: // i386
        return Architecture::x86;
    case 62: // x86-64
        return Architecture::x86_64;
    case 40: // 32-bit ARM
        return Architecture::arm;
    case 183: // AArch64
        return Architecture::arm64;
    default:
        return Architecture::unknown;
    }
}

std::string processDisplayName(std::string_view comm, std::string_view argv0,
                               std::string_view executablePath) {
    const std::string_view executableName = baseName(executablePathFromLink(executablePath));
    if (comm.empty()) {
        return std::string(!executableName.empty() ? executableName : baseName(argv0));
    }
    if (comm.size() < kernelNameLimit) {
        return std::string(comm);
    }
    for (const std::string_view candidate : {baseName(argv0), executableName}) {
        if (candidate.size() > comm.size() && candidate.substr(0, comm.size()) == comm) {
            return std::string(candidate);
        }
    }
    return std::string(comm);
}

} // namespace loadwarden

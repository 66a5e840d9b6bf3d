// The per-process files under /proc: ProcStat::parse and isKernelThread,
// runStateFromProcLetter, parseStatmResidentPages, parseProcIO, keyedValue
// (status), firstArgument (cmdline), executablePathFromLink (exe),
// architectureFromELFHeader and processDisplayName. Every parser reads the same bytes, so each file's
// samples seed all of them.
#include "core/measurement/linux/fields.h"
#include "core/measurement/linux/process_files.h"
#include "tests/fuzz/fuzz_support.h"

#include <array>
#include <tuple>

namespace loadwarden {
namespace {

using fuzz::check;

// The fields the parser reads, in their places among zeros.
std::string printed(const ProcStat& stat) {
    std::array<std::string, 25> fields; // by their numbers in proc_pid_stat(5)
    fields.fill("0");
    fields[4] = std::to_string(stat.ppid);
    fields[9] = std::to_string(stat.flags);
    fields[14] = std::to_string(stat.userTicks);
    fields[15] = std::to_string(stat.systemTicks);
    fields[20] = std::to_string(stat.threads);
    fields[22] = std::to_string(stat.startTicks);
    fields[24] = std::to_string(stat.residentPages);
    std::string text = std::to_string(stat.pid) + " (" + stat.comm + ") " + stat.state;
    for (std::size_t field = 4; field < fields.size(); ++field) {
        text += ' ' + fields[field];
    }
    return text + '\n';
}

void checkStat(std::string_view text) {
    const auto stat = ProcStat::parse(text);
    if (!stat) {
        return;
    }
    stat->isKernelThread();
    runStateFromProcLetter(stat->state);
    const auto fields = [](const ProcStat& s) {
        return std::tie(s.pid, s.comm, s.state, s.ppid, s.flags, s.userTicks, s.systemTicks,
                        s.threads, s.startTicks, s.residentPages);
    };
    const auto again = ProcStat::parse(printed(*stat));
    check(again && fields(*again) == fields(*stat), "a parsed stat, printed again, reads the same");
}

void checkStatm(std::string_view text) {
    if (const auto resident = parseStatmResidentPages(text)) {
        check(parseStatmResidentPages("0 " + std::to_string(*resident) + " 0\n") == resident,
              "resident pages, printed again, read the same");
    }
}

void checkStatusAndIO(std::string_view text) {
    for (const std::string_view key : {"Name", "State", "Uid", "VmRSS", "Threads"}) {
        check(fuzz::isTrimmedLine(keyedValue(text, key)), "a keyed value is one trimmed line");
    }
    if (const auto io = parseProcIO(text)) {
        const auto again = parseProcIO("read_bytes: " + std::to_string(io->readBytes) +
                                       "\nwrite_bytes: " + std::to_string(io->writeBytes) + "\n");
        check(again && again->readBytes == io->readBytes && again->writeBytes == io->writeBytes,
              "io counters, printed again, read the same");
    }
}

// The text as the NUL-separated pieces a process's name is made of.
void checkNames(std::string_view text) {
    const std::string_view argv0 = firstArgument(text);
    check(text.starts_with(argv0) && argv0.find('\0') == std::string_view::npos,
          "argv[0] is the first argument");
    const std::string_view path = executablePathFromLink(text);
    check(text == path || text == std::string(path) + " (deleted)",
          "only the mark of a replaced file is cut");
    architectureFromELFHeader(text);

    const std::string_view comm = argv0;
    const std::string_view rest = text.substr(std::min(text.size(), argv0.size() + 1));
    const std::string_view argument = firstArgument(rest);
    const std::string_view link = rest.substr(std::min(rest.size(), argument.size() + 1));
    const std::string name = processDisplayName(comm, argument, link);
    if (comm.empty()) {
        check(name.find('/') == std::string::npos, "a name is no path");
    } else if (comm.size() < 15) {
        check(name == comm, "a name the kernel did not cut stays");
    } else {
        check(name.starts_with(comm), "a cut name is only ever continued");
    }
}

} // namespace

void fuzz::run(std::string_view text) {
    checkStat(text);
    checkStatm(text);
    checkStatusAndIO(text);
    checkNames(text);
}

} // namespace loadwarden

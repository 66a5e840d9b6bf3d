#include "core/details/process_details.h"

#include "core/control/action_text.h"
#include "core/text/units_format.h"

namespace loadwarden {

namespace {

std::string portsText(const FileInfo& files) {
    if (files.ports.empty()) {
        return "none";
    }
    std::string text;
    for (const std::uint16_t port : files.ports) {
        text += (text.empty() ? "" : ", ") + std::to_string(port);
    }
    return text;
}

// The open files, when they have been read and the system told.
const FileInfo* knownFiles(ProcessExtras extras) {
    return extras.files && *extras.files ? &**extras.files : nullptr;
}

// A process held by a limit is stopped and continued in turn: it reads as
// limited, not as paused one moment and running the next.
std::string stateText(RunState state, std::optional<double> limit) {
    if (limit) {
        return ActionText::limitedMark(*limit);
    }
    switch (state) {
    case RunState::running:
        return "Running";
    case RunState::sleeping:
        return "Sleeping";
    case RunState::stopped:
        return ActionText::pausedMark();
    case RunState::zombie:
        return "Zombie";
    case RunState::other:
        return "Other";
    }
    return {};
}

} // namespace

std::string_view title(ProcessFact fact) {
    switch (fact) {
    case ProcessFact::pid:
        return "PID";
    case ProcessFact::name:
        return "Name";
    case ProcessFact::user:
        return "User";
    case ProcessFact::state:
        return "State";
    case ProcessFact::cpu:
        return "CPU";
    case ProcessFact::memory:
        return "Memory";
    case ProcessFact::threads:
        return "Threads";
    case ProcessFact::architecture:
        return "Architecture";
    case ProcessFact::madeBy:
        return "Made by";
    case ProcessFact::sandboxed:
        return "Sandboxed";
    case ProcessFact::openFiles:
        return "Open files";
    case ProcessFact::ports:
        return "Listening on";
    }
    return {};
}

std::string factText(ProcessFact fact, const LiveProcess& process, ProcessExtras extras) {
    const ProcessRecord& record = process.record;
    const FileInfo* files = knownFiles(extras);
    switch (fact) {
    case ProcessFact::pid:
        return std::to_string(record.pid);
    case ProcessFact::name:
        return record.name;
    case ProcessFact::user:
        return record.user;
    case ProcessFact::state:
        return stateText(record.state, extras.limit);
    case ProcessFact::cpu:
        return formatPercent(process.rates.cpuPercent);
    case ProcessFact::memory:
        return formatBytes(record.memoryBytes);
    case ProcessFact::threads:
        return record.threads ? std::to_string(*record.threads) : std::string(noFigure);
    case ProcessFact::architecture:
        return record.arch == Architecture::unknown ? std::string(noFigure)
                                                    : std::string(label(record.arch));
    case ProcessFact::madeBy:
        return extras.code ? signerText(extras.code->signer) : std::string(noFigure);
    case ProcessFact::sandboxed:
        return extras.code ? (extras.code->sandboxed ? "Yes" : "No") : std::string(noFigure);
    case ProcessFact::openFiles:
        return files ? std::to_string(files->files) : std::string(noFigure);
    case ProcessFact::ports:
        return files ? portsText(*files) : std::string(noFigure);
    }
    return {};
}

std::optional<double> factAmount(ProcessFact fact, const LiveProcess& process,
                                 ProcessExtras extras) {
    const ProcessRecord& record = process.record;
    const FileInfo* files = knownFiles(extras);
    switch (fact) {
    case ProcessFact::pid:
        return record.pid;
    case ProcessFact::cpu:
        return process.rates.cpuPercent;
    case ProcessFact::memory:
        return static_cast<double>(record.memoryBytes);
    case ProcessFact::threads:
        return record.threads.value_or(-1);
    case ProcessFact::openFiles:
        return files ? static_cast<double>(files->files) : -1.0;
    default:
        return std::nullopt;
    }
}

} // namespace loadwarden

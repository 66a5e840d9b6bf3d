#pragma once

#include "core/codesign/code_info.h"
#include "core/measurement/file_info.h"
#include "core/measurement/process_record.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace loadwarden {

// The facts about one process that the Details tab lists and `loadwarden info` prints.
enum class ProcessFact {
    pid,
    name,
    user,
    state,
    cpu,
    memory,
    threads,
    architecture,
    madeBy,
    sandboxed,
    openFiles,
    ports,
};

inline constexpr std::array<ProcessFact, 12> allProcessFacts{
    ProcessFact::pid,    ProcessFact::name,      ProcessFact::user,      ProcessFact::state,
    ProcessFact::cpu,    ProcessFact::memory,    ProcessFact::threads,   ProcessFact::architecture,
    ProcessFact::madeBy, ProcessFact::sandboxed, ProcessFact::openFiles, ProcessFact::ports,
};

// What is known about one process beside its record: read on demand, so
// either may still be missing.
struct ProcessExtras {
    const CodeInfo* code = nullptr;
    // Outer: not read yet; inner: the system tells nothing (another user's process).
    const std::optional<FileInfo>* files = nullptr;
    std::optional<double> limit; // the CPU limit its app is held to
};

std::string_view title(ProcessFact fact);

// The fact as words; a dash where it is not known.
std::string factText(ProcessFact fact, const LiveProcess& process, ProcessExtras extras);

// The fact as a number to sort by; absent for the facts that sort by their words.
std::optional<double> factAmount(ProcessFact fact, const LiveProcess& process,
                                 ProcessExtras extras);

} // namespace loadwarden

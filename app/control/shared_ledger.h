#pragma once

#include "app/control/defaults_store.h"
#include "app/control/process_handle.h"
#include "core/control/paused_ledger.h"

#include <cstdint>
#include <vector>

namespace loadwarden {

// This copy's part of the paused ledger that every copy of the program shares
// through the user's defaults under "pausedLedger". Each change is merged
// into what is stored, under a lock beside the store, so no copy loses
// another's entries, and reaches the disk before the call returns.
class SharedLedger {
public:
    explicit SharedLedger(DefaultsStore store,
                          PausedLedger::StartTime startTime = defaultStartTime());

    // Before anything is stopped. False when the store could not be written;
    // then nothing is recorded and the caller must stop nothing.
    bool record(const std::vector<std::int32_t>& pids);
    // After the processes were continued.
    bool forget(const std::vector<std::int32_t>& pids);
    // This copy's entries that are still the same processes, held so.
    std::vector<ProcessHandle> liveProcesses() const;

    // At start: continues what copies that are no longer running left
    // stopped, and drops their entries; the pids it continued. Processes
    // that a running copy holds are left to it.
    std::vector<std::int32_t> releaseOrphans();

    const PausedLedger& mine() const { return mine_; }

    static PausedLedger::StartTime defaultStartTime();

private:
    bool save(PausedLedger changed);
    std::string lockPath() const;

    DefaultsStore store_;
    PausedLedger::StartTime startTime_;
    PausedLedger::Process me_;
    PausedLedger mine_;
};

} // namespace loadwarden

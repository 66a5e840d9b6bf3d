#include "app/control/shared_ledger.h"

#include "app/control/file_lock.h"
#include "app/control/process_start_time.h"

#include <csignal>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr char ledgerKey[] = "pausedLedger";

// A stored value that does not decode is kept aside before anything
// replaces it: it may name processes still stopped.
PausedLedger storedLedger(const DefaultsStore& store) {
    const auto stored = store.read(ledgerKey);
    if (!stored) {
        return {};
    }
    if (auto ledger = PausedLedger::parsed(*stored)) {
        return *std::move(ledger);
    }
    store.keepAside(ledgerKey);
    return {};
}

// The entries' processes that are still the ones recorded.
std::vector<ProcessHandle> heldProcesses(const PausedLedger& ledger,
                                         const PausedLedger::StartTime& startTime) {
    std::vector<ProcessHandle> processes;
    for (const auto& entry : ledger.entries) {
        if (auto process = ProcessHandle::open(entry.pid, entry.started, startTime)) {
            processes.push_back(std::move(*process));
        }
    }
    return processes;
}

} // namespace

SharedLedger::SharedLedger(DefaultsStore store, PausedLedger::StartTime startTime)
    : store_(std::move(store)),
      startTime_(std::move(startTime)), me_{.pid = getpid(),
                                            .started = startTime_(getpid()).value_or(0.0)} {}

PausedLedger::StartTime SharedLedger::defaultStartTime() {
    return processStartTime;
}

bool SharedLedger::record(const std::vector<std::int32_t>& pids) {
    PausedLedger changed = mine_;
    changed.record(pids, startTime_, me_);
    return save(std::move(changed));
}

bool SharedLedger::forget(const std::vector<std::int32_t>& pids) {
    PausedLedger changed = mine_;
    changed.forget(pids);
    return save(std::move(changed));
}

std::vector<ProcessHandle> SharedLedger::liveProcesses() const {
    return heldProcesses(mine_, startTime_);
}

std::vector<std::int32_t> SharedLedger::releaseOrphans() {
    const FileLock lock(lockPath());
    PausedLedger stored = storedLedger(store_);
    const PausedLedger orphans = stored.orphans(startTime_);
    const auto processes = heldProcesses(orphans, startTime_);
    sendEach(SIGCONT, processes);
    if (orphans.entries.empty()) {
        return {}; // the common start: nothing to write, so nothing is written
    }
    for (const auto& entry : orphans.entries) {
        stored.entries.erase(entry);
    }
    store_.write(ledgerKey, stored.encoded()); // continuing was safe whether or not this lands
    return pidsOf(processes);
}

bool SharedLedger::save(PausedLedger changed) {
    const FileLock lock(lockPath());
    if (!lock.held()) {
        return false;
    }
    const PausedLedger merged = PausedLedger::merged(storedLedger(store_), changed, me_);
    if (!store_.write(ledgerKey, merged.encoded())) {
        return false;
    }
    mine_ = std::move(changed);
    return true;
}

std::string SharedLedger::lockPath() const {
    // QSettings keeps a lock file of its own at ".lock".
    return store_.path() + ".ledger-lock";
}

} // namespace loadwarden

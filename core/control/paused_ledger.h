#pragma once

#include "core/foundation/date.h"

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace loadwarden {

// Every process this program has stopped and not yet continued, kept where
// it survives the program, so that whatever ends a copy of the program, the
// next copy to start continues what it left stopped. A process is named by
// its pid and its start time, so a reused pid is never mistaken for it.
//
// Several copies may run at once (the window and a command-line limit, say)
// and share the stored ledger. Each entry names the copy that holds it
// stopped, itself known by pid and start time: a copy saves its own entries
// beside the others' (merged), and releases only entries whose holder is
// gone.
struct PausedLedger {
    // A running copy of the program, or a process it stopped.
    struct Process {
        std::int32_t pid = 0;
        Date started = 0.0;

        auto operator<=>(const Process&) const = default;
    };

    struct Entry {
        std::int32_t pid = 0;
        Date started = 0.0;
        std::optional<Process> holder; // absent in ledgers written without one

        // One entry per process, whoever holds it.
        bool operator==(const Entry& other) const {
            return pid == other.pid && started == other.started;
        }
        auto operator<=>(const Entry& other) const {
            return std::tie(pid, started) <=> std::tie(other.pid, other.started);
        }
    };

    // A process's start time now, or nothing when it cannot be read (gone).
    using StartTime = std::function<std::optional<Date>(std::int32_t)>;

    std::set<Entry> entries;

    // The pids whose start time can be read, held by `holder`; a pid already
    // recorded by another holder keeps its first holder.
    void record(const std::vector<std::int32_t>& pids, const StartTime& startTime,
                const Process& holder);
    // Every entry of these pids, whatever its start time.
    void forget(const std::vector<std::int32_t>& pids);
    // The recorded pids that are still the same processes, ascending.
    std::vector<std::int32_t> livePids(const StartTime& startTime) const;

    // The entries held by `holder`.
    PausedLedger heldBy(const Process& holder) const;
    // The stored ledger with this copy's entries replaced by `mine`.
    static PausedLedger merged(const PausedLedger& stored, const PausedLedger& mine,
                               const Process& holder);
    // Entries whose holder is no longer running (or was never named): the
    // ones the starting copy must continue and drop.
    PausedLedger orphans(const StartTime& startTime) const;

    bool operator==(const PausedLedger&) const = default;

    // JSON: {"entries": [{"pid", "started", "holder": {"pid", "started"}}]}.
    std::string encoded() const;
    // Missing or undecodable data gives an empty ledger.
    static PausedLedger decoded(const std::string& data);
    // Nothing when the data does not decode.
    static std::optional<PausedLedger> parsed(const std::string& data);
};

} // namespace loadwarden

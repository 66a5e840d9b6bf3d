#pragma once

#include "core/foundation/date.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// Stored data the program cannot read is never overwritten: it is kept
// aside beside where it was, under its own name with the date it was found
// unreadable (UTC), and only the newest few such copies of one name stay.
class KeptAside {
public:
    static constexpr std::size_t keptCopies = 3;

    // A file: "history.json" kept as "history-2026-11-23T201500Z.json".
    static KeptAside file(std::string_view name);
    // A key of the user's defaults: "settings" kept as
    // "settings.unreadable-2026-11-23T201500Z".
    static KeptAside key(std::string_view key);

    struct Plan {
        std::string name;                 // for the copy made now
        std::vector<std::string> dropped; // the oldest copies, past the few kept
    };
    // Where a copy made at `date` goes among the names already there (a
    // second copy within the same second is numbered: "…Z-2.json"), and
    // which older copies go. The new copy always stays, even when a clock
    // set back makes it look older than the others.
    Plan plan(Date date, const std::vector<std::string>& existing) const;

private:
    KeptAside(std::string head, std::string tail)
        : head_(std::move(head)), tail_(std::move(tail)) {}

    std::string head_; // before the date
    std::string tail_; // after the date and its number
};

} // namespace loadwarden

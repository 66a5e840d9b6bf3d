#pragma once

#include "app/foundation/loaded.h"
#include "core/foundation/calendar.h"
#include "core/history/usage_history.h"

#include <optional>
#include <string>

namespace loadwarden {

// "history.json" in the program's data folder: Application Support on macOS,
// the XDG data folder on Linux. Saves replace the file whole, so a save cut
// short leaves the one before.
class HistoryFile {
public:
    HistoryFile();
    explicit HistoryFile(std::string path) : path_(std::move(path)) {}

    // What the file holds, pruned to the days kept; empty when there is no
    // file, it cannot be read or decoded, or a newer version wrote it. Such
    // a file is first kept aside, dated `now`, and the note says where.
    Loaded<UsageHistory> load(Date now, const Calendar& calendar) const;
    // Nothing when saved; else what went wrong, in words, and the file as it was.
    std::optional<std::string> save(const UsageHistory& history) const;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

} // namespace loadwarden

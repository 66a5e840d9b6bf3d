#pragma once

#include "app/foundation/clock.h"

#include <optional>
#include <string>

namespace loadwarden {

// The user's defaults: on macOS the standard user defaults, on Linux a file
// in the XDG config folder. Values are JSON text stored as data under a key
// ("settings", "pausedLedger"). Each call reads or writes the store afresh,
// so several copies of the program see each other's writes and a failed
// write says so whatever failed before.
class DefaultsStore {
public:
    // The program's own defaults.
    DefaultsStore() = default;
    // Defaults kept in a file of their own, in the same format; `clock`
    // dates what is kept aside.
    explicit DefaultsStore(std::string path, Clock clock = currentDate)
        : path_(std::move(path)), clock_(std::move(clock)) {}

    std::optional<std::string> read(const std::string& key) const;
    // True once the value is on disk; false when it could not be written.
    bool write(const std::string& key, const std::string& value) const;

    // Moves the value under `key`, which its reader could not decode, to its
    // dated key (`KeptAside`) in one write, removing the oldest such copies;
    // the key it now has, or nothing when that could not be written.
    std::optional<std::string> keepAside(const std::string& key) const;

    // The file behind the defaults, for a lock beside it.
    std::string path() const;

private:
    std::optional<std::string> path_;
    Clock clock_ = currentDate;
};

} // namespace loadwarden

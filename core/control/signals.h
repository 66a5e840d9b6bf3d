#pragma once

#include <cstdint>

namespace loadwarden {

// The only code that sends signals to other processes. Pid 0 and 1 (and any
// pid below them) are never signalled, whatever the caller asks.
namespace Signals {

struct Outcome {
    enum class Kind { done, notPermitted, gone, failed };
    Kind kind = Kind::done;
    int error = 0; // the errno of a failed call

    bool operator==(const Outcome&) const = default;
};

Outcome send(int signal, std::int32_t pid);

// Through a process descriptor (Linux): reaches the process it was opened on,
// or none once that one has ended, whatever took its pid since. `pid` is the
// one it was opened on, refused below 2 like any other.
Outcome sendThrough(int signal, int processDescriptor, std::int32_t pid);

} // namespace Signals

} // namespace loadwarden

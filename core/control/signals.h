#pragma once

#include <cstdint>
#include <map>
#include <vector>

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

using Outcomes = std::map<std::int32_t, Outcome>;

Outcome send(int signal, std::int32_t pid);

// Each pid in order; callers may ignore the outcomes, nothing is retried.
Outcomes pause(const std::vector<std::int32_t>& pids);
Outcomes resume(const std::vector<std::int32_t>& pids);
Outcomes terminate(const std::vector<std::int32_t>& pids);
Outcomes kill(const std::vector<std::int32_t>& pids);

} // namespace Signals

} // namespace loadwarden

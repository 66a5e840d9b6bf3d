#pragma once

#include <cstdint>
#include <set>
#include <vector>

namespace loadwarden {

// Which of these apps the window server reports as not responding to
// events. Only macOS tells a third party; elsewhere the set stays empty
// rather than guessed.
std::set<std::int32_t> unresponsivePids(const std::vector<std::int32_t>& pids);

} // namespace loadwarden

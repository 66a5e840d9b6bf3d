#pragma once

#include <cstdint>
#include <optional>

namespace loadwarden {

// The processor time of a whole process, all its threads, to the nanosecond,
// from its clock, which is open for every user's processes; nothing once it
// has gone. A process whose clock has not moved has run no code: it has
// opened, closed, read and written nothing meanwhile.
std::optional<std::uint64_t> processCPUTimeNs(int pid);

} // namespace loadwarden

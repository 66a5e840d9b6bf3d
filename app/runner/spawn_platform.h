#pragma once

#include <optional>
#include <spawn.h>
#include <sys/types.h>

// What the runner does differently on each system, behind one interface.
namespace loadwarden::SpawnPlatform {

// Keeps every descriptor but 0, 1 and 2 out of the child. Call it after the
// file actions that set up those three. False when it could not be arranged.
bool closeOtherDescriptors(posix_spawnattr_t& attributes, posix_spawn_file_actions_t& actions);

// User plus system CPU seconds used so far by a child not yet reaped;
// nothing when the system will not tell.
std::optional<double> cpuSeconds(pid_t child);

} // namespace loadwarden::SpawnPlatform

#pragma once

#include <string>
#include <string_view>

namespace loadwarden {

// The desktop-entry id of the app a process belongs to, from its
// /proc/PID/cgroup text. Desktops start every app in a systemd unit named
// app[-<launcher>]-<AppID>[@<random>].service or
// app[-<launcher>]-<AppID>-<random>.scope, with dashes inside the id escaped
// as \x2d. Empty when the process runs in no such unit.
std::string appIDFromCgroup(std::string_view cgroup);

// Whether the process is a service that the system manager runs for the
// whole machine (a unit of its system.slice), from the same text.
bool isSystemService(std::string_view cgroup);

} // namespace loadwarden

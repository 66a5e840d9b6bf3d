#pragma once

#include <string_view>

namespace loadwarden {

#ifdef __APPLE__
inline constexpr bool isMac = true;
#else
inline constexpr bool isMac = false;
#endif

// A text that names the Mac or macOS, and the same text for other systems,
// which speaks of the computer and the system instead.
constexpr std::string_view onThisPlatform(std::string_view mac, std::string_view elsewhere) {
    return isMac ? mac : elsewhere;
}

// Fixes that open a System Settings page are offered only where it exists.
inline constexpr bool hasSystemSettings = isMac;

} // namespace loadwarden

#pragma once

#include <array>
#include <string_view>
#include <unordered_set>

namespace loadwarden {

// Processes that belong to the operating system and are never offered for
// quitting, pausing or limiting.
namespace ProtectedList {

// The names, compared exactly. Both spellings of "ControlCenter",
// "NotificationCenter" and "WindowManager" stand on purpose.
const std::unordered_set<std::string_view>& protectedNames();

// Executables under these folders are the system's own. Each ends in a slash
// so that "/sbinx/" is not taken for "/sbin/".
inline constexpr std::array<std::string_view, 5> protectedPrefixes{
    "/System/Library/", "/usr/libexec/", "/usr/sbin/", "/sbin/", "/Library/Apple/"};

// On Linux, the programs a desktop session cannot lose without ending (the
// user's service manager, message bus, shell, display and sound servers);
// empty on macOS, where the names above cover the same ground.
const std::unordered_set<std::string_view>& sessionNames();

// A name among protectedNames or sessionNames.
bool isProtectedName(std::string_view name);

// By name; else by the path's last component without its extension (so
// ".../Dock.app" counts as Dock); else by the path's folder. An empty path
// is judged by name alone.
bool isProtected(std::string_view name, std::string_view path);

} // namespace ProtectedList

} // namespace loadwarden

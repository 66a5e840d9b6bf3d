#pragma once

#include <string>
#include <string_view>

namespace loadwarden {

// A process's display name on macOS: the file name of its executable, or of
// the command the process-status tool printed when the path is unknown (it
// prints the path the program was started by, which never changes).
std::string executableName(std::string_view path, std::string_view command);

} // namespace loadwarden

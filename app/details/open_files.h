#pragma once

#include "core/measurement/file_info.h"

#include <cstdint>
#include <optional>

namespace loadwarden {

// What the process has open, read now; absent where the system will not tell
// (another user's process, or one that has ended).
std::optional<FileInfo> openFiles(std::int32_t pid);

} // namespace loadwarden

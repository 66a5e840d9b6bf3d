#pragma once

#include <optional>
#include <string>

namespace loadwarden {

// The executable file of this running program, as the system knows it;
// nothing when it will not say.
std::optional<std::string> programPath();

} // namespace loadwarden

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace loadwarden {

// The password database's name for a user id; nothing when it has none.
std::optional<std::string> passwordDatabaseName(std::uint32_t uid);

} // namespace loadwarden

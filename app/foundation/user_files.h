#pragma once

// Reading the user's files and environment the way every reader here does.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace loadwarden {

// A whole file; absent when it cannot be read.
std::optional<std::string> fileText(const std::filesystem::path& path);

// An environment variable, empty when unset.
std::string_view environment(const char* name);

// The locale that messages are shown in, by the usual precedence.
std::string messagesLocale();

} // namespace loadwarden

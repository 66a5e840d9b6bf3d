#pragma once

// Reading and writing the user's files, and reading the environment, the way
// every part of the program here does.

#include "core/foundation/date.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace loadwarden {

// A whole file; absent when it cannot be read.
std::optional<std::string> fileText(const std::filesystem::path& path);

// The entries of a folder (files, folders or links) whose names end with
// `suffix`, by name; none when it cannot be read.
std::map<std::string, std::filesystem::path> filesIn(const std::filesystem::path& folder,
                                                     std::string_view suffix);

// Makes the file at `path` hold `text`, making its folder first. The file is
// replaced whole once the text is written, so a write cut short leaves the
// one before. Nothing when written; else what went wrong, in words.
std::optional<std::string> replaceFile(const std::filesystem::path& path, std::string_view text);

// Moves `file` aside to its dated name in the same folder (`KeptAside`),
// removing the oldest such copies; where it went, or nothing when it could
// not be moved.
std::optional<std::filesystem::path> keepAside(const std::filesystem::path& file, Date date);

// An environment variable, empty when unset.
std::string_view environment(const char* name);

// The locale that messages are shown in, by the usual precedence.
std::string messagesLocale();

} // namespace loadwarden

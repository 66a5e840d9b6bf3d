#pragma once

// Key files as desktop entries and systemd units write them: "[Group]"
// headers, "Key=Value" lines, "#" comments.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// Every value of each key, in order, of the first group with that name.
using KeyFileGroup = std::map<std::string, std::vector<std::string>, std::less<>>;

KeyFileGroup keyFileGroup(std::string_view text, std::string_view group);

// The last value a key was given, which is the one that counts.
std::optional<std::string_view> lastValue(const KeyFileGroup& group, std::string_view key);

// A desktop entry's string value with its escapes (\s, \n, \t, \r, \\) resolved.
std::string unescapedValue(std::string_view value);

} // namespace loadwarden

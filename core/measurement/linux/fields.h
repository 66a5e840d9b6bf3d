#pragma once

#include <string_view>
#include <vector>

namespace loadwarden {

// The blank-separated fields of a /proc or /sys line; runs of spaces and tabs
// count as one separator.
std::vector<std::string_view> splitFields(std::string_view text);

// The trimmed value of the first "key: value" line; empty when there is none.
std::string_view keyedValue(std::string_view text, std::string_view key);

bool startsWith(std::string_view text, std::string_view prefix);

} // namespace loadwarden

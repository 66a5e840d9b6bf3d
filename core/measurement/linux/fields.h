#pragma once

#include <string_view>
#include <vector>

namespace loadwarden {

// The blank-separated fields of a /proc or /sys line, one at a time and
// without copies; runs of spaces and tabs count as one separator.
class FieldCursor {
public:
    explicit FieldCursor(std::string_view text) : rest_(text) {}

    // The next field; empty once there are no more.
    std::string_view next();

private:
    std::string_view rest_;
};

// Every field of a line at once.
std::vector<std::string_view> splitFields(std::string_view text);

// The trimmed value of the first "key: value" line; empty when there is none.
std::string_view keyedValue(std::string_view text, std::string_view key);

bool startsWith(std::string_view text, std::string_view prefix);

} // namespace loadwarden

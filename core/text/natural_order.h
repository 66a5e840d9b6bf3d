#pragma once

#include <compare>
#include <string_view>

namespace loadwarden {

// The order in which people expect names listed, as a file manager lists
// them: case-insensitive, with runs of digits compared as numbers ("file9"
// before "file10"). Names equal in that sense are still told apart (by their
// bytes) so that the order is total and the same on every platform.
std::strong_ordering naturalCompare(std::string_view a, std::string_view b);

} // namespace loadwarden

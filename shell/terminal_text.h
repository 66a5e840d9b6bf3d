#pragma once

// Text laid out in a terminal's columns, where a UTF-8 character takes one.

#include <cstddef>
#include <string>
#include <string_view>

namespace loadwarden::TerminalText {

std::size_t displayWidth(std::string_view text);

// Filled with spaces to `width`, on the left when right-aligned.
std::string padded(std::string_view text, std::size_t width, bool rightAligned);

// Cut at a character boundary to fit `width`, a tilde marking the cut.
std::string fitted(std::string_view text, std::size_t width);

} // namespace loadwarden::TerminalText

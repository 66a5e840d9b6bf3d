#pragma once

#include <string>
#include <string_view>

namespace loadwarden {

// Lower case as the process table compares and searches names: ASCII, Latin-1,
// Latin Extended-A, Greek and Cyrillic letters are folded; everything else,
// including bytes that are not valid UTF-8, stays as it is. Implemented here
// rather than through the C library so that both platforms order alike,
// whatever the user's locale.
std::string lowercased(std::string_view text);

// One code point of UTF-8 text at `index`, which advances past it. A byte that
// does not start a valid sequence comes back as invalidByteBase + byte.
char32_t nextCodePoint(std::string_view text, std::size_t& index);
inline constexpr char32_t invalidByteBase = 0x110000;

char32_t lowercased(char32_t codePoint);

// Letters of the scripts that lowercased folds, by case; anything else is
// neither.
bool isUppercase(char32_t codePoint);
bool isLowercase(char32_t codePoint);

// The code points of UTF-8 text, invalid bytes kept as nextCodePoint gives them.
std::u32string codePoints(std::string_view text);

} // namespace loadwarden

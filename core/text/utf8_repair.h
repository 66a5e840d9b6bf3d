#pragma once

#include <string>
#include <string_view>

namespace loadwarden {

// Bytes from an outside tool as valid UTF-8: every ill-formed sequence
// becomes one U+FFFD per maximal invalid part, the way text decoders
// conventionally do it, so a stray byte never hides the characters after it.
std::string repairUTF8(std::string_view bytes);

} // namespace loadwarden

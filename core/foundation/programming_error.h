#pragma once

#include <source_location>
#include <string_view>

namespace loadwarden {

// A broken invariant of our own code, not bad input: report where and abort,
// in every build type.
[[noreturn]] void programmingError(std::string_view message,
                                   std::source_location where = std::source_location::current());

inline void require(bool condition, std::string_view message,
                    std::source_location where = std::source_location::current()) {
    if (!condition) {
        programmingError(message, where);
    }
}

} // namespace loadwarden

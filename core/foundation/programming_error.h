#pragma once

#include <string_view>

namespace loadwarden {

// The place in our code that called, as std::source_location gives it; ours
// because clang 14 cannot build that one with GCC's standard library.
struct SourcePlace {
    const char* file = "";
    unsigned line = 0;
    const char* function = "";

    // Called in a default argument, the caller's place.
    static constexpr SourcePlace current(const char* file = __builtin_FILE(),
                                         unsigned line = __builtin_LINE(),
                                         const char* function = __builtin_FUNCTION()) {
        return {file, line, function};
    }
};

// A broken invariant of our own code, not bad input: report where and abort,
// in every build type.
[[noreturn]] void programmingError(std::string_view message,
                                   SourcePlace where = SourcePlace::current());

inline void require(bool condition, std::string_view message,
                    SourcePlace where = SourcePlace::current()) {
    if (!condition) {
        programmingError(message, where);
    }
}

} // namespace loadwarden

#pragma once

#include <cstdint>

namespace loadwarden::KernelSettings {

// An integer system setting by name, read into 8 bytes; a 4-byte answer is
// sign-extended; 0 when the setting cannot be read.
std::int64_t integer(const char* name);

// The kernel's absolute-time unit in nanoseconds (1 on Intel, 125/3 on Apple silicon).
double timebase();

} // namespace loadwarden::KernelSettings

#pragma once

#include "core/foundation/programming_error.h"

#include <cstdint>

namespace loadwarden {

// Byte and tick counters must never wrap silently: a wrapped sum would show a
// plausible but wrong figure. Overflow is a programming error and aborts.
inline std::uint64_t checkedAdd(std::uint64_t lhs, std::uint64_t rhs,
                                SourcePlace where = SourcePlace::current()) {
    std::uint64_t sum = 0;
    if (__builtin_add_overflow(lhs, rhs, &sum)) {
        programmingError("unsigned overflow in addition", where);
    }
    return sum;
}

inline std::uint64_t checkedMultiply(std::uint64_t lhs, std::uint64_t rhs,
                                     SourcePlace where = SourcePlace::current()) {
    std::uint64_t product = 0;
    if (__builtin_mul_overflow(lhs, rhs, &product)) {
        programmingError("unsigned overflow in multiplication", where);
    }
    return product;
}

// The difference of two cumulative counters; a counter that went backwards
// (a reset, a reused id) contributes nothing rather than a huge wrapped value.
constexpr std::uint64_t counterDelta(std::uint64_t previous, std::uint64_t current) {
    return current >= previous ? current - previous : 0;
}

// Counters read from a file of the kernel that add up past 64 bits come
// from a garbled file, not from our code: the sum stops at the largest value
// rather than aborting the reader.
inline std::uint64_t saturatingAdd(std::uint64_t lhs, std::uint64_t rhs) {
    std::uint64_t sum = 0;
    return __builtin_add_overflow(lhs, rhs, &sum) ? UINT64_MAX : sum;
}

inline std::uint64_t saturatingMultiply(std::uint64_t lhs, std::uint64_t rhs) {
    std::uint64_t product = 0;
    return __builtin_mul_overflow(lhs, rhs, &product) ? UINT64_MAX : product;
}

} // namespace loadwarden

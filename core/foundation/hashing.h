#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <tuple>
#include <type_traits>
#include <vector>

namespace loadwarden {

// A value type opts into hashing by exposing its fields, in order, as a tuple
// of references; equality stays the defaulted member-wise operator==.
template <typename T>
concept HasFields = requires(const T& value) {
    value.fields();
};

template <typename T>
std::size_t hashValue(const T& value);

inline void hashCombine(std::size_t& seed, std::size_t hash) {
    seed ^= hash + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2);
}

template <typename T>
std::size_t hashValue(const std::optional<T>& value) {
    return value ? hashValue(*value) * 31 + 1 : 0;
}

template <typename T>
std::size_t hashValue(const std::vector<T>& values) {
    std::size_t seed = values.size();
    for (const auto& element : values) {
        hashCombine(seed, hashValue(element));
    }
    return seed;
}

template <typename T>
std::size_t hashValue(const T& value) {
    if constexpr (HasFields<T>) {
        std::size_t seed = 0;
        std::apply([&seed](const auto&... field) { (hashCombine(seed, hashValue(field)), ...); },
                   value.fields());
        return seed;
    } else {
        return std::hash<T>{}(value);
    }
}

} // namespace loadwarden

template <loadwarden::HasFields T>
struct std::hash<T> {
    std::size_t operator()(const T& value) const noexcept { return loadwarden::hashValue(value); }
};

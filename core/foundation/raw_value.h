#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace loadwarden {

// An enumeration that is stored or exchanged by name specialises RawValues
// with one table; both directions and the JSON coding read that table.
template <typename Enum>
struct RawValues;

template <typename Enum>
concept HasRawValues = requires {
    RawValues<Enum>::table;
};

template <HasRawValues Enum>
constexpr std::string_view rawValue(Enum value) {
    for (const auto& [candidate, raw] : RawValues<Enum>::table) {
        if (candidate == value) {
            return raw;
        }
    }
    return {};
}

template <HasRawValues Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view raw) {
    for (const auto& [candidate, name] : RawValues<Enum>::table) {
        if (name == raw) {
            return candidate;
        }
    }
    return std::nullopt;
}

// Every case in declaration order, for menus and iteration.
template <HasRawValues Enum>
constexpr auto allCases() {
    std::array<Enum, RawValues<Enum>::table.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        cases[i] = RawValues<Enum>::table[i].first;
    }
    return cases;
}

template <typename Enum, std::size_t N>
using RawValueTable = std::array<std::pair<Enum, std::string_view>, N>;

} // namespace loadwarden

#pragma once

// JSON coding shared by every value type: optionals as null, enumerations
// with raw values by their raw string.

#include "core/foundation/raw_value.h"

#include <concepts>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

namespace nlohmann {

template <typename T>
struct adl_serializer<std::optional<T>> {
    static void to_json(json& j, const std::optional<T>& value) {
        if (value) {
            j = *value;
        } else {
            j = nullptr;
        }
    }
    static void from_json(const json& j, std::optional<T>& value) {
        if (j.is_null()) {
            value.reset();
        } else {
            // get<T>() would ask whether T is default-constructible, which
            // clang 14 answers wrongly for a class nested in one being defined.
            T decoded;
            j.get_to(decoded);
            value = std::move(decoded);
        }
    }
};

} // namespace nlohmann

namespace loadwarden {

template <HasRawValues Enum>
void to_json(nlohmann::json& j, Enum value) {
    j = std::string(rawValue(value));
}

template <HasRawValues Enum>
void from_json(const nlohmann::json& j, Enum& value) {
    const auto parsed = fromRawValue<Enum>(j.get<std::string>());
    if (!parsed) {
        throw nlohmann::json::other_error::create(
            501, "unknown value \"" + j.get<std::string>() + "\"", &j);
    }
    value = *parsed;
}

// A whole number as JSON writes one. A number with a fraction or an exponent,
// or one that T cannot hold, is a type error: converting it would be
// undefined or wrap round.
template <std::integral T>
T wholeNumber(const nlohmann::json& j) {
    if (j.is_number_unsigned()) {
        if (const auto value = j.get<std::uint64_t>(); std::in_range<T>(value)) {
            return static_cast<T>(value);
        }
    } else if (j.is_number_integer()) {
        if (const auto value = j.get<std::int64_t>(); std::in_range<T>(value)) {
            return static_cast<T>(value);
        }
    }
    throw nlohmann::json::type_error::create(302, "a whole number in range is needed", &j);
}

} // namespace loadwarden

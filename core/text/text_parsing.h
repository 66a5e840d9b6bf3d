#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace loadwarden {

// The whole text must be an integer of T's range in that base (decimal
// unless said); no blanks around it.
template <typename T>
std::optional<T> parseInteger(std::string_view text, int base = 10) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (text.empty() || error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return value;
}

// Plain decimal notation only: digits with an optional fraction ("12", "0.5",
// "59.99"), within the range of a double. Locale-independent, unlike strtod.
std::optional<double> parseDecimal(std::string_view text);

std::string_view trimWhitespace(std::string_view text);

// Splits at every separator, keeping empty pieces.
std::vector<std::string_view> splitKeepingEmpty(std::string_view text, char separator);

// Calls visit(line) for each line-feed-separated line, the last one even
// without a trailing line feed.
template <typename Visitor>
void forEachLine(std::string_view text, Visitor&& visit) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        visit(text.substr(0, end));
        if (end == std::string_view::npos) {
            break;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace loadwarden

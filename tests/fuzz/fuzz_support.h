#pragma once

// What every harness shares: libFuzzer's entry point, which hands the input
// to the harness's fuzz::run as text, the pieces harnesses cut it into, and
// checks that abort so that libFuzzer keeps the input that broke a promise.

#include "core/text/text_parsing.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace loadwarden::fuzz {

// Each harness defines this once; it is its own program.
void run(std::string_view text);

inline void check(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", promise);
        std::abort();
    }
}

inline bool isWithin(double value, double low, double high) {
    return std::isfinite(value) && value >= low && value <= high;
}

inline bool isTrimmedLine(std::string_view value) {
    return value == trimWhitespace(value) && value.find('\n') == std::string_view::npos;
}

// The first `most` line-feed-separated lines; fewer when the text has fewer.
inline std::vector<std::string_view> leadingLines(std::string_view text, std::size_t most) {
    std::vector<std::string_view> lines;
    while (lines.size() < most && !text.empty()) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

// The text in two at the first line feed from its middle on, as two
// successive readings of the same file.
inline std::pair<std::string_view, std::string_view> halves(std::string_view text) {
    const std::size_t cut = text.find('\n', text.size() / 2);
    const std::size_t split = cut == std::string_view::npos ? text.size() : cut + 1;
    return {text.substr(0, split), text.substr(split)};
}

} // namespace loadwarden::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    loadwarden::fuzz::run({reinterpret_cast<const char*>(data), size});
    return 0;
}

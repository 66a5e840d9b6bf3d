#include "core/text/text_parsing.h"

#include <cmath>

namespace loadwarden {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isWhitespace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

} // namespace

std::optional<double> parseDecimal(std::string_view text) {
    double whole = 0.0;
    std::size_t i = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        whole = whole * 10.0 + (text[i] - '0');
    }
    const std::size_t wholeDigits = i;
    double fraction = 0.0;
    std::size_t fractionDigits = 0;
    if (i < text.size() && text[i] == '.') {
        double scale = 0.1;
        for (++i; i < text.size() && isDigit(text[i]); ++i, ++fractionDigits) {
            fraction += (text[i] - '0') * scale;
            scale /= 10.0;
        }
    }
    // Digits past the range of a double add up to infinity, which no figure is.
    if (i != text.size() || wholeDigits + fractionDigits == 0 || !std::isfinite(whole)) {
        return std::nullopt;
    }
    return whole + fraction;
}

std::string_view trimWhitespace(std::string_view text) {
    while (!text.empty() && isWhitespace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isWhitespace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::vector<std::string_view> splitKeepingEmpty(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (true) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace loadwarden

#include "core/text/natural_order.h"

#include "core/text/case_folding.h"

namespace loadwarden {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Accented Latin letters sort with their base letter ("é" with "e"), as in
// a dictionary; ligatures and letters without one stay themselves.
char32_t baseLetter(char32_t c) {
    static constexpr std::string_view latin1 = // U+00E0 to U+00FF
        "aaaaaa?ceeeeiiii?nooooo?ouuuuy?y";
    static constexpr std::string_view latinExtendedA = // U+0100 to U+017F
        "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii??jjkkkllllllllll"
        "nnnnnnnnnoooooo??rrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
    char letter = '?';
    if (c >= 0x00E0 && c <= 0x00FF) {
        letter = latin1[c - 0x00E0];
    } else if (c >= 0x0100 && c <= 0x017F) {
        letter = latinExtendedA[c - 0x0100];
    }
    return letter == '?' ? c : static_cast<char32_t>(letter);
}

std::string_view digitRunAt(std::string_view text, std::size_t index) {
    std::size_t end = index;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    return text.substr(index, end - index);
}

// Two runs of digits by their value, however long they are.
std::strong_ordering compareNumbers(std::string_view a, std::string_view b) {
    const auto significant = [](std::string_view digits) {
        const std::size_t first = digits.find_first_not_of('0');
        return first == std::string_view::npos ? std::string_view{} : digits.substr(first);
    };
    const std::string_view x = significant(a);
    const std::string_view y = significant(b);
    if (x.size() != y.size()) {
        return x.size() <=> y.size();
    }
    return x.compare(y) <=> 0;
}

std::strong_ordering comparePrimary(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const std::string_view x = digitRunAt(a, i);
            const std::string_view y = digitRunAt(b, j);
            if (const auto order = compareNumbers(x, y); order != 0) {
                return order;
            }
            i += x.size();
            j += y.size();
            continue;
        }
        const char32_t x = baseLetter(lowercased(nextCodePoint(a, i)));
        const char32_t y = baseLetter(lowercased(nextCodePoint(b, j)));
        if (x != y) {
            return x <=> y;
        }
    }
    // The one that ran out first is a prefix of the other and comes first.
    return (b.size() - j) == 0
               ? ((a.size() - i) == 0 ? std::strong_ordering::equal : std::strong_ordering::greater)
               : std::strong_ordering::less;
}

} // namespace

std::strong_ordering naturalCompare(std::string_view a, std::string_view b) {
    if (const auto order = comparePrimary(a, b); order != 0) {
        return order;
    }
    return a.compare(b) <=> 0;
}

} // namespace loadwarden

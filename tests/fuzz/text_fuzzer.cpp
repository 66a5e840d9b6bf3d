// The text helpers that take any bytes: repairUTF8, lowercased and
// nextCodePoint, naturalCompare, and parseDecimal.
#include "core/text/case_folding.h"
#include "core/text/natural_order.h"
#include "core/text/text_parsing.h"
#include "core/text/utf8_repair.h"
#include "tests/fuzz/fuzz_support.h"

#include <charconv>
#include <cmath>
#include <compare>

namespace loadwarden {
namespace {

using fuzz::check;

// Well-formed UTF-8 by the table of the Unicode standard (3.9, table 3-7),
// written apart from the code under test.
bool isValidUTF8(std::string_view text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto within = [](unsigned b, unsigned low, unsigned high) {
        return b >= low && b <= high;
    };
    for (std::size_t i = 0; i < text.size();) {
        const unsigned lead = byte(i);
        std::size_t length = 1;
        unsigned low = 0x80; // the second byte's range
        unsigned high = 0xBF;
        if (within(lead, 0xC2, 0xDF)) {
            length = 2;
        } else if (within(lead, 0xE0, 0xEF)) {
            length = 3;
            low = lead == 0xE0 ? 0xA0 : 0x80;
            high = lead == 0xED ? 0x9F : 0xBF;
        } else if (within(lead, 0xF0, 0xF4)) {
            length = 4;
            low = lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xF4 ? 0x8F : 0xBF;
        } else if (lead >= 0x80) {
            return false;
        }
        if (i + length > text.size() || (length > 1 && !within(byte(i + 1), low, high))) {
            return false;
        }
        for (std::size_t k = 2; k < length; ++k) {
            if (!within(byte(i + k), 0x80, 0xBF)) {
                return false;
            }
        }
        i += length;
    }
    return true;
}

void checkRepair(std::string_view text, bool valid) {
    const std::string repaired = repairUTF8(text);
    check(isValidUTF8(repaired), "repaired text is valid");
    check(valid == (repaired == text), "valid text is kept as it is, and only valid text");
    check(repaired.size() <= 3 * text.size(), "a byte becomes at most one replacement");
}

void checkCaseFolding(std::string_view text, bool valid) {
    const std::string lower = lowercased(text);
    check(lowercased(lower) == lower, "lower case stays lower case");
    check(!valid || isValidUTF8(lower), "valid text stays valid in lower case");
    std::size_t codePoints = 0;
    for (std::size_t index = 0; index < text.size(); ++codePoints) {
        const std::size_t start = index;
        const char32_t c = nextCodePoint(text, index);
        check(index > start && index - start <= 4 && index <= text.size(),
              "a code point is one to four bytes");
        check(!valid || c < invalidByteBase, "valid text has no invalid bytes");
        check(lowercased(lowercased(c)) == lowercased(c), "a lowercased letter stays");
    }
    std::size_t lowerCodePoints = 0;
    for (std::size_t index = 0; index < lower.size(); ++lowerCodePoints) {
        nextCodePoint(lower, index);
    }
    check(!valid || lowerCodePoints == codePoints, "each letter becomes one letter");
}

void checkNaturalOrder(const std::vector<std::string_view>& names) {
    for (const std::string_view a : names) {
        for (const std::string_view b : names) {
            const auto order = naturalCompare(a, b);
            const auto reverse = naturalCompare(b, a);
            check(std::is_eq(order) == (a == b), "only the same name is equal");
            check(std::is_lt(order) == std::is_gt(reverse) &&
                      std::is_eq(order) == std::is_eq(reverse),
                  "the order is antisymmetric");
            for (const std::string_view c : names) {
                check(!(std::is_lt(order) && std::is_lt(naturalCompare(b, c))) ||
                          std::is_lt(naturalCompare(a, c)),
                      "the order is transitive");
            }
        }
    }
}

void checkDecimal(std::string_view text) {
    const auto value = parseDecimal(text);
    if (!value) {
        return;
    }
    check(fuzz::isWithin(*value, 0.0, HUGE_VAL), "a decimal is a finite number");
    double exact = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), exact);
    check(std::abs(*value - exact) <= exact * 1e-12, "a decimal reads as its digits say");
}

} // namespace

void fuzz::run(std::string_view text) {
    const bool valid = isValidUTF8(text);
    checkRepair(text, valid);
    checkCaseFolding(text, valid);
    const auto lines = leadingLines(text, 8);
    checkNaturalOrder(lines);
    for (const std::string_view line : lines) {
        checkDecimal(line);
    }
}

} // namespace loadwarden

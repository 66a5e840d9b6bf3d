#include "core/text/utf8_repair.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

constexpr const char* replacement = "\xEF\xBF\xBD";

TEST(RepairUTF8, KeepsValidTextOfEveryLength) {
    const std::string text = "a \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(repairUTF8(text), text);
    EXPECT_EQ(repairUTF8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(RepairUTF8, ReplacesEachMaximalInvalidPartOnce) {
    const std::string r = replacement;
    EXPECT_EQ(repairUTF8("x\xFFy"), "x" + r + "y");
    // A truncated sequence is one error, and the byte that cut it is kept.
    EXPECT_EQ(repairUTF8("\xE2\x82"
                         "A"),
              r + "A");
    EXPECT_EQ(repairUTF8("end\xF0\x9F\x98"), "end" + r);
    // Overlong forms, surrogates and code points past U+10FFFF are refused
    // byte by byte, as their second byte is already out of range.
    EXPECT_EQ(repairUTF8("\xC0\xAF"), r + r);
    EXPECT_EQ(repairUTF8("\xE0\x80\xAF"), r + r + r);
    EXPECT_EQ(repairUTF8("\xED\xA0\x80"), r + r + r);
    EXPECT_EQ(repairUTF8("\xF4\x90\x80\x80"), r + r + r + r);
    EXPECT_EQ(repairUTF8("\x80\x80"), r + r);
}

} // namespace
} // namespace loadwarden

#include "core/diagnosis/cause_text.h"
#include "core/diagnosis/diagnosis_json.h"
#include "shell/why_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace loadwarden {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Columns as a terminal counts them.
std::size_t columns(const std::string& line) {
    std::size_t count = 0;
    for (const char byte : line) {
        count += (static_cast<unsigned char>(byte) & 0xC0) != 0x80 ? 1 : 0;
    }
    return count;
}

WhyReport busyMachine() {
    const Cause runaway{.kind = Cause::Kind::appCPU,
                        .score = 89.6,
                        .appKey = "pid:200",
                        .appName = "yes",
                        .value = 100,
                        .fix = Cause::Fix::pause("pid:200")};
    const Cause kernel{.kind = Cause::Kind::appCPU,
                       .score = 61,
                       .appKey = "pid:3",
                       .appName = "kworker/u16:2",
                       .value = 70};
    const ExplainerApp busiest{.key = "pid:3", .name = "kworker/u16:2", .cpuPercent = 70};
    return {{runaway, kernel}, {busiest}, {{"pid:3", "System, read-only"}}};
}

TEST(WhyReport, CardsAreNumberedWrappedAndEndWithWhatToDo) {
    std::ostringstream out;
    printWhyReport(busyMachine(), out);
    const auto lines = linesOf(out.str());
    ASSERT_GE(lines.size(), 12u);
    EXPECT_EQ(lines[0], CauseText::question());
    EXPECT_EQ(lines[2], "1. yes is using 100% of a processor core.");
    EXPECT_THAT(out.str(), HasSubstr("   Score 90 · Fix: Pause yes\n"));
    EXPECT_THAT(out.str(), HasSubstr("   Score 61 · System, read-only\n"));
    EXPECT_THAT(out.str(), ContainsRegex("\n   kworker/u16:2 +70% +0 bytes  System, read-only\n"));
    for (const auto& line : lines) {
        EXPECT_LE(columns(line), 80u) << line;
    }
}

TEST(WhyReport, NothingFoundGivesTheAllClear) {
    std::ostringstream out;
    printWhyReport({}, out);
    EXPECT_THAT(out.str(), HasSubstr(std::string(CauseText::allClearTitle()) + "\nProcessor,"));
    EXPECT_THAT(out.str(), HasSubstr("No apps are running."));

    std::ostringstream json;
    printWhyJSON({}, json);
    const auto parsed = nlohmann::json::parse(json.str());
    EXPECT_TRUE(parsed["causes"].empty());
    EXPECT_EQ(parsed["allClear"]["sentence"], CauseText::allClearSentence());
}

TEST(WhyReport, JsonCarriesTheDataAndTheTexts) {
    std::ostringstream out;
    printWhyJSON(busyMachine(), out);
    const auto parsed = nlohmann::json::parse(out.str());
    ASSERT_EQ(parsed["causes"].size(), 2u);
    EXPECT_EQ(parsed["causes"][0]["fix"]["kind"], "pause");
    EXPECT_EQ(parsed["causes"][0]["fixLabel"], "Pause yes");
    EXPECT_EQ(parsed["causes"][1]["fixLabel"], nullptr);
    EXPECT_EQ(parsed["causes"][1]["title"], "kworker/u16:2 is using 70% of a processor core.");
    EXPECT_EQ(parsed["busiest"][0]["name"], "kworker/u16:2");
    EXPECT_TRUE(parsed["allClear"].is_null());
}

} // namespace
} // namespace loadwarden

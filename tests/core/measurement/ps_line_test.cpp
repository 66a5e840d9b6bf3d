#include "core/measurement/ps_line.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace loadwarden {
namespace {

std::string readTestData(const std::string& name) {
    std::ifstream file(std::string(LOADWARDEN_TEST_DATA) + "/" + name);
    std::stringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

TEST(PSLine, ParsesPaddedColumnsAndACommandWithSpaces) {
    const auto line = PSLine::parse(
        "  123     1   501  40960   0:01.50 Ss   /Applications/My App.app/Contents/MacOS/My App  ");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->pid, 123);
    EXPECT_EQ(line->ppid, 1);
    EXPECT_EQ(line->uid, 501u);
    EXPECT_EQ(line->rssBytes, 41'943'040u);
    EXPECT_EQ(line->cpuTimeNs, 1'500'000'000u);
    EXPECT_EQ(line->state, RunState::sleeping);
    EXPECT_EQ(line->command, "/Applications/My App.app/Contents/MacOS/My App");
}

TEST(PSLine, BrokenOrGarbledLinesAreDroppedAlone) {
    // A line cut and spliced with another's digits must not stop the sampler.
    const std::string output = "    1     0     0  9192 0:02.00 S  launchd\n"
                               "    2     1     0  100 0:00.00 S\n"      // no command
                               "    x     1     0  100 0:00.00 S  bad\n" // pid not a number
                               "    3     1    -5  100 0:00.00 S  uid\n" // uid unsigned
                               "    4     1     0  100 1:2:3:4 S  time\n"
                               "  412     1   501 18014398509481984 0:00.10 S  Mail\n"
                               "  413     1   501  2048 300000000-00:00:00 S  Notes\n"
                               "\n"
                               "    5     1   501  200 1-00:00:00 R+ worker";
    const auto lines = PSLine::parseOutput(output);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].command, "launchd");
    EXPECT_EQ(lines[1].pid, 5);
    EXPECT_EQ(lines[1].cpuTimeNs, 86'400'000'000'000u);
    EXPECT_EQ(lines[1].state, RunState::running);
}

TEST(PSLine, ParsesThisMachinesRealOutput) {
    const std::string output = readTestData("ps_output.txt");
    const auto lines = PSLine::parseOutput(output);
    ASSERT_EQ(lines.size(), 65u);
    EXPECT_EQ(lines.front().pid, 1);
    EXPECT_EQ(lines.front().rssBytes, 9192u * 1024);
    EXPECT_EQ(lines.front().cpuTimeNs, 2'000'000'000u);
    EXPECT_EQ(lines[3].command, "kworker/R-rcu_gp");
    EXPECT_EQ(lines[3].state, RunState::sleeping);
    EXPECT_EQ(lines.back().command, "ps");
    EXPECT_EQ(lines.back().ppid, 2229);
}

TEST(PSLineTime, DaysHoursMinutesAndFractions) {
    EXPECT_EQ(PSLine::parseTime("2-03:04:05"), 183'845'000'000'000u);
    EXPECT_EQ(PSLine::parseTime("1:02:03"), 3'723'000'000'000u);
    EXPECT_EQ(PSLine::parseTime("12:34.50"), 754'500'000'000u);
    EXPECT_EQ(PSLine::parseTime("59.75"), 59'750'000'000u);
    for (const char* broken :
         {"", "1:2:3:4", "-", "x-1:00", "1:xx", "::", "1e3", "1.2.3", "300000000-00:00:00"}) {
        EXPECT_FALSE(PSLine::parseTime(broken)) << broken;
    }
}

TEST(RunStateField, OnlyTheFirstCharacterCounts) {
    using enum RunState;
    const std::pair<const char*, RunState> fields[] = {
        {"R+", running}, {"I", sleeping}, {"Ss", sleeping}, {"T", stopped},
        {"U", other},    {"Z", zombie},   {"", other}};
    for (const auto& [field, state] : fields) {
        EXPECT_EQ(runStateFromField(field), state) << field;
    }
}

} // namespace
} // namespace loadwarden

// `loadwarden watch` as a user runs it: the real program in its own
// settings and data folders, until a signal ends it.
#include "tests/support/program_runs.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <thread>

namespace loadwarden {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> linesOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class WatchCommand : public testing::Test {
protected:
    WatchCommand() {
        std::filesystem::create_directories(home);
        setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1); // inherited by the program
        setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    }
    ~WatchCommand() override { std::filesystem::remove_all(home); }

    const std::filesystem::path home =
        std::filesystem::temp_directory_path() / ("watch-command-" + std::to_string(getpid()));
};

TEST_F(WatchCommand, PrintsTheMeterEveryRefreshAndSavesTheHistoryWhenTerminated) {
    const auto output = home / "watch.txt";
    const pid_t watch = support::spawn({LOADWARDEN_PROGRAM, "watch", "--interval", "1"}, output);
    // Hidden, it refreshes every 5 seconds; two lines show the loop goes on.
    for (int wait = 0; wait < 3000 && linesOf(output).size() < 2; ++wait) {
        std::this_thread::sleep_for(10ms);
    }
    const auto lines = linesOf(output);
    ASSERT_GE(lines.size(), 2u);
    for (const auto& line : lines) {
        EXPECT_TRUE(std::regex_match(line, std::regex(R"(\d+(\.\d)?%( · .+)?)"))) << line;
    }
    EXPECT_FALSE(std::filesystem::exists(home / "data/Loadwarden/history.json"));

    kill(watch, SIGTERM);
    EXPECT_EQ(support::exitStatusOf(watch), 0);
    EXPECT_TRUE(std::filesystem::exists(home / "data/Loadwarden/history.json"));
}

} // namespace
} // namespace loadwarden

#include "app/history/history_file.h"

#include <QTemporaryDir>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {
namespace {

constexpr Date now = 1'800'000'000.0;
const Calendar utc = Calendar::fixedOffset(0);

// Every kept day full of apps: a file of a few megabytes, slow enough to write
// that a kill lands in the middle.
UsageHistory fullHistory(double cpuPercent) {
    UsageHistory history;
    for (int day = 0; day < UsageHistory::keptDays; ++day) {
        std::vector<AppSample> samples;
        for (int app = 0; app < 150; ++app) {
            samples.push_back({.key = "exe:/usr/bin/tool" + std::to_string(app),
                               .name = "tool" + std::to_string(app),
                               .cpuPercent = cpuPercent,
                               .memoryBytes = 1'000'000,
                               .energyWatts = 1.0,
                               .networkPerSecond = 10.0});
        }
        history.record(samples, now - day * 86400.0, utc, 2.0);
    }
    return history;
}

std::string contentsOf(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(HistoryFileTest, SavesInItsOwnFolderAndLoadsBackPruned) {
    QTemporaryDir folder;
    const HistoryFile file(folder.filePath("Loadwarden/history.json").toStdString());
    EXPECT_EQ(file.load(now, utc), UsageHistory{}); // no file yet

    UsageHistory history = fullHistory(50.0);
    history.record({{.key = "app:/Old.app", .name = "Old", .cpuPercent = 1}}, now - 40 * 86400.0,
                   utc, 1.0);
    ASSERT_EQ(file.save(history), std::nullopt);
    const UsageHistory loaded = file.load(now, utc);
    EXPECT_EQ(loaded.days.size(), 35u);
    EXPECT_FALSE(loaded.days.contains(utc.dayKey(now - 40 * 86400.0)));

    std::ofstream(file.path()) << R"({"days":{},"version":2})";
    EXPECT_EQ(file.load(now, utc), UsageHistory{});
}

TEST(HistoryFileTest, AFailedSaveSaysWhy) {
    const auto error = HistoryFile("/dev/null/Loadwarden/history.json").save(UsageHistory{});
    ASSERT_TRUE(error);
    EXPECT_FALSE(error->empty());
}

TEST(HistoryFileTest, ASaveKilledMidWriteLeavesTheOldFileWhole) {
    QTemporaryDir folder;
    const HistoryFile file(folder.filePath("history.json").toStdString());
    const UsageHistory before = fullHistory(10.0);
    const UsageHistory after = fullHistory(20.0);
    ASSERT_EQ(file.save(before), std::nullopt);

    for (int round = 0; round < 8; ++round) {
        const pid_t saver = fork();
        if (saver == 0) {
            for (;;) {
                file.save(after);
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3 + 5 * round));
        kill(saver, SIGKILL);
        waitpid(saver, nullptr, 0);
        const auto found = decodeHistory(contentsOf(file.path()));
        ASSERT_TRUE(found) << "torn after " << round << " rounds";
        EXPECT_TRUE(*found == before || *found == after);
    }
}

} // namespace
} // namespace loadwarden

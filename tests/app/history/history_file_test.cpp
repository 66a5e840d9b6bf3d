#include "app/foundation/user_files.h"
#include "app/history/history_file.h"

#include <QTemporaryDir>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden {
namespace {

constexpr Date now = 1'800'000'000.0;
const Calendar utc = Calendar::fixedOffset(0);

// Every kept day full of apps: a file of a third of a megabyte, long enough to
// write that a kill can land in the middle.
UsageHistory fullHistory(double cpuPercent) {
    UsageHistory history;
    for (int day = 0; day < UsageHistory::keptDays; ++day) {
        std::vector<AppSample> samples;
        for (int app = 0; app < 50; ++app) {
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

TEST(HistoryFileTest, SavesInItsOwnFolderAndLoadsBackPruned) {
    QTemporaryDir folder;
    const HistoryFile file(folder.filePath("Loadwarden/history.json").toStdString());
    EXPECT_EQ(file.load(now, utc).value, UsageHistory{}); // no file yet

    UsageHistory history = fullHistory(50.0);
    history.record({{.key = "app:/Old.app", .name = "Old", .cpuPercent = 1}}, now - 40 * 86400.0,
                   utc, 1.0);
    ASSERT_EQ(file.save(history), std::nullopt);
    const auto loaded = file.load(now, utc);
    EXPECT_EQ(loaded.value.days.size(), 35u);
    EXPECT_FALSE(loaded.value.days.contains(utc.dayKey(now - 40 * 86400.0)));
    EXPECT_EQ(loaded.note, std::nullopt);
}

TEST(HistoryFileTest, AnUnreadableFileIsKeptAsideAndOnlyTheNewestThreeCopiesStay) {
    QTemporaryDir root;
    const std::filesystem::path folder = root.filePath("Loadwarden").toStdString();
    const HistoryFile file((folder / "history.json").string());
    std::filesystem::create_directories(folder);
    const std::string whole = encodeHistory(fullHistory(10.0));
    // Garbage, a newer version, a file cut short, and two found in the same second.
    const std::vector<std::pair<Date, std::string>> unreadable{
        {now, "\x7fgarbage"},
        {now + 3600.0, R"({"days":{},"version":2})"},
        {now + 7200.0, whole.substr(0, whole.size() / 2)},
        {now + 7200.0, ""}};
    for (const auto& [date, text] : unreadable) {
        std::ofstream(file.path()) << text;
        const auto loaded = file.load(date, utc);
        EXPECT_EQ(loaded.value, UsageHistory{});
        EXPECT_FALSE(std::filesystem::exists(file.path()));
        ASSERT_TRUE(loaded.note);
        EXPECT_THAT(*loaded.note, testing::StartsWith("App history couldn’t be read"));
    }
    ASSERT_EQ(filesIn(folder, "").size(), 3u);
    EXPECT_EQ(fileText(folder / "history-2027-01-15T090000Z.json"), unreadable[1].second);
    EXPECT_EQ(fileText(folder / "history-2027-01-15T100000Z.json"), unreadable[2].second);
    EXPECT_EQ(fileText(folder / "history-2027-01-15T100000Z-2.json"), unreadable[3].second);

    // The next save writes a new file beside them.
    ASSERT_EQ(file.save(fullHistory(20.0)), std::nullopt);
    EXPECT_EQ(filesIn(folder, "").size(), 4u);
    EXPECT_EQ(file.load(now, utc).note, std::nullopt);
}

// What a save changes in the history's folder: the files in it (a temporary
// one appears while a new file is written) and the history's own size and time.
struct FolderState {
    long files = 0;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;

    bool operator==(const FolderState&) const = default;
};

FolderState stateOf(const std::filesystem::path& history) {
    std::error_code error;
    FolderState state;
    for (auto file = std::filesystem::directory_iterator(history.parent_path(), error);
         file != std::filesystem::directory_iterator(); file.increment(error)) {
        ++state.files;
    }
    state.size = std::filesystem::file_size(history, error);
    state.written = std::filesystem::last_write_time(history, error);
    return state;
}

TEST(HistoryFileTest, ASaveKilledMidWriteLeavesTheOldFileWhole) {
    QTemporaryDir folder;
    const HistoryFile file(folder.filePath("history.json").toStdString());
    const UsageHistory before = fullHistory(10.0);
    const std::string beforeText = encodeHistory(before);
    const UsageHistory after = fullHistory(20.0);

    // Each saver is killed once it has begun to write, a little later each
    // round: at once, while writing, while replacing, during the next save.
    for (int round = 0; round < 12; ++round) {
        std::ofstream(file.path()) << beforeText;
        const FolderState untouched = stateOf(file.path());
        const pid_t saver = fork();
        if (saver == 0) {
            while (!file.save(after)) {
            }
            _exit(1);
        }
        const long wait = (1L << round) - 1;
        bool saving = true;
        for (long seen = 0; saving && seen <= wait;
             saving = waitpid(saver, nullptr, WNOHANG) == 0) {
            seen += stateOf(file.path()) == untouched ? 0 : 1;
        }
        ASSERT_TRUE(saving) << "a save failed";
        kill(saver, SIGKILL);
        waitpid(saver, nullptr, 0);
        const auto found = decodeHistory(fileText(file.path()).value_or(""));
        ASSERT_TRUE(found) << "torn in round " << round;
        EXPECT_TRUE(*found == before || *found == after);
    }
}

} // namespace
} // namespace loadwarden

// `loadwarden history` over a history file prepared in its own data folder.
#include "app/foundation/clock.h"
#include "app/foundation/local_calendar.h"
#include "app/foundation/user_files.h"
#include "core/history/usage_history.h"
#include "shell/history_options.h"
#include "tests/support/program_runs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace loadwarden {
namespace {

class HistoryCommand : public testing::Test {
protected:
    HistoryCommand() {
        std::filesystem::create_directories(home / "data/Loadwarden");
        setenv("XDG_DATA_HOME", (home / "data").c_str(), 1); // inherited by the program
    }
    ~HistoryCommand() override { std::filesystem::remove_all(home); }

    std::string run(const std::vector<std::string>& arguments, int& status) {
        std::vector<std::string> all{LOADWARDEN_PROGRAM, "history"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const auto output = home / "output.txt";
        status = support::exitStatusOf(support::spawn(all, output.string()));
        return fileText(output).value_or("");
    }

    const std::filesystem::path home =
        std::filesystem::temp_directory_path() / ("history-command-" + std::to_string(getpid()));
};

TEST_F(HistoryCommand, ListsTheChosenDaysBusiestFirst) {
    const Date now = currentDate();
    const Calendar calendar = localCalendar();
    UsageHistory history;
    history.record({{.key = "app:/Applications/Mail.app", .name = "Mail", .cpuPercent = 10},
                    {.key = "exe:/usr/bin/rsync", .name = "rsync", .cpuPercent = 50}},
                   now, calendar, 60.0);
    history.record({{.key = "app:/Applications/Mail.app", .name = "Mail", .cpuPercent = 100}},
                   now - 3 * 86400.0, calendar, 60.0);
    std::ofstream(home / "data/Loadwarden/history.json") << encodeHistory(history);

    int status = 0;
    const auto today = nlohmann::json::parse(run({"--json"}, status));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(today["days"], 1);
    ASSERT_EQ(today["apps"].size(), 2u);
    EXPECT_EQ(today["apps"][0]["name"], "rsync");
    EXPECT_EQ(today["apps"][0]["folder"], "/usr/bin");
    EXPECT_DOUBLE_EQ(today["apps"][0]["totals"]["cpuSeconds"].get<double>(), 30.0);

    const auto week = nlohmann::json::parse(run({"--days", "7", "--json"}, status));
    EXPECT_EQ(week["apps"][0]["name"], "Mail");
    EXPECT_DOUBLE_EQ(week["apps"][0]["totals"]["cpuSeconds"].get<double>(), 66.0);

    const std::string table = run({"--days=30"}, status);
    EXPECT_NE(table.find("App history: 30 days"), std::string::npos) << table;
    EXPECT_NE(table.find("CPU time"), std::string::npos) << table;
    EXPECT_NE(table.find("1m 6s"), std::string::npos) << table;
}

TEST_F(HistoryCommand, SaysSoWhenThereIsNoneAndRefusesOtherSpans) {
    int status = 0;
    EXPECT_NE(run({}, status).find("No history yet"), std::string::npos);
    EXPECT_EQ(status, 0);
    run({"--days", "3"}, status);
    EXPECT_EQ(status, 2);
    for (const std::string days : {"3", "x"}) {
        const auto parsed = parseHistoryOptions({"--days", days});
        const auto* error = std::get_if<std::string>(&parsed);
        EXPECT_EQ(error ? *error : "accepted", "--days takes 1, 7 or 30, not '" + days + "'");
    }
}

} // namespace
} // namespace loadwarden

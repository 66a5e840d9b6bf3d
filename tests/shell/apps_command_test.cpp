// `loadwarden apps`: its options, its table and its JSON.
#include "core/grouping/process_grouper.h"
#include "core/text/platform_wording.h"
#include "shell/apps_options.h"
#include "shell/apps_report.h"
#include "shell/commands.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <unistd.h>

namespace loadwarden {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(AppsOptions, ColumnOrderSearchAndItsOwnLongestInterval) {
    const auto given = std::get<AppsOptions>(parseAppsOptions(
        {"--sort=name", "--ascending", "--search", "safari 4", "--json", "--interval", "0.25"}));
    EXPECT_EQ(given.column, ProcessColumn::name);
    EXPECT_TRUE(given.ascending);
    EXPECT_EQ(given.search, "safari 4");
    EXPECT_TRUE(given.json);
    EXPECT_EQ(given.interval, 0.25);

    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--sort"}, "--sort needs a column: name, cpu, memory, energy, disk, network or gpu"},
        {{"--sort", "CPU"},
         "--sort takes name, cpu, memory, energy, disk, network or gpu, not 'CPU'"},
        {{"--search"}, "--search needs the text to look for"},
        {{"--interval", "61"}, "--interval takes seconds above 0 and up to 60, not '61'"},
    };
    for (const auto& [arguments, message] : cases) {
        const auto parsed = parseAppsOptions(arguments);
        const auto* error = std::get_if<std::string>(&parsed);
        EXPECT_EQ(error ? *error : "accepted", message);
    }
}

LiveProcess process(std::int32_t pid, std::string name, std::string path, bool isOwn = true,
                    double cpu = 0.0) {
    LiveProcess live = fixtures::process(pid, std::move(name), std::move(path), 1, isOwn);
    live.record.memoryBytes = 1'000'000;
    live.rates.cpuPercent = cpu;
    return live;
}

// An app with two helpers, a tool of the user's, a root daemon and this program.
std::vector<ProcessGroup> machine() {
    const std::string mail = "/Applications/Mail.app/Contents/";
    return ProcessGrouper::group(
        {
            process(100, "Mail", mail + "MacOS/Mail", true, 30.0),
            process(120, "Mail Indexer", mail + "XPC/indexer", true, 70.0),
            process(110, "Mail Fetcher", mail + "XPC/fetcher", true, 1.0),
            process(200, "backup-tool", "/home/ada/bin/backup-tool", true, 2.0),
            process(300, "cupsd", "/usr/local/sbin/cupsd", false, 0.5),
            process(400, "loadwarden", "/usr/local/bin/loadwarden", true, 1.0),
        },
        AppNames{{100, "Mail"}}, 400);
}

std::string report(const AppsOptions& options) {
    std::ostringstream out;
    printAppsReport(arrangeApps(machine(), options), out);
    return out.str();
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(line);
    }
    return result;
}

TEST(AppsReport, SectionsInOrderWithMembersIndentedUnderTheirGroup) {
    const auto table = lines(report({}));
    ASSERT_GE(table.size(), 11u);
    EXPECT_THAT(table[0], HasSubstr("NAME"));
    EXPECT_EQ(table[2], "Apps (1)");
    EXPECT_THAT(table[3], HasSubstr("Mail"));
    EXPECT_THAT(table[3], HasSubstr("101%"));
    EXPECT_THAT(table[3], HasSubstr("quit, forceQuit, pause, limit"));
    EXPECT_THAT(table[3], HasSubstr("█")); // more than a whole core
    // Busiest helper first; members repeat no actions.
    EXPECT_EQ(table[4].substr(0, 16), "    Mail Indexer");
    EXPECT_EQ(table[5].substr(0, 8), "    Mail");
    EXPECT_EQ(table[6].substr(0, 16), "    Mail Fetcher");
    EXPECT_THAT(table[4], Not(HasSubstr("quit")));
    EXPECT_EQ(table[8], "Background processes (2)");
    EXPECT_THAT(table[9], HasSubstr("backup-tool"));
    EXPECT_THAT(table[10], HasSubstr("This app"));
    EXPECT_EQ(table[12], std::string(sectionTitle(GroupKind::system)) + " (1)");
    EXPECT_THAT(table[13], HasSubstr(onThisPlatform("macOS, read-only", "System, read-only")));
    // A lone process is its own line, with no member line under it.
    EXPECT_EQ(table.size(), 14u);
}

TEST(AppsReport, SearchKeepsMatchingGroupsAndTheirMatchingMembers) {
    const auto table = lines(report({.search = "indexer"}));
    ASSERT_EQ(table.size(), 5u);
    EXPECT_EQ(table[2], "Apps (1)");
    EXPECT_EQ(table[4].substr(0, 16), "    Mail Indexer");
    EXPECT_EQ(report({.search = "nothing here"}), "No processes match.\n");
}

TEST(AppsJson, GroupsWithTheirFieldNamesTotalsHeatAndActions) {
    std::ostringstream out;
    printAppsJSON(arrangeApps(machine(), {.column = ProcessColumn::name, .ascending = true}), out);
    const auto groups = nlohmann::json::parse(out.str());
    ASSERT_EQ(groups.size(), 4u);
    const auto& mail = groups[0];
    EXPECT_EQ(mail["id"], "app:/Applications/Mail.app");
    EXPECT_EQ(mail["kind"], 0);
    EXPECT_EQ(mail["leader"]["record"]["pid"], 100);
    EXPECT_EQ(mail["totalCPU"], 101.0);
    EXPECT_EQ(mail["totalMemory"], 3'000'000);
    EXPECT_TRUE(mail["totalEnergy"].is_null());
    EXPECT_EQ(mail["heat"]["cpu"], 4);
    EXPECT_EQ(mail["heat"]["memory"], 0);
    EXPECT_THAT(mail["allowedActions"].get<std::vector<std::string>>(),
                ElementsAre("quit", "forceQuit", "pause", "limit"));
    EXPECT_TRUE(mail["reason"].is_null());
    EXPECT_THAT(mail["shownMembers"].get<std::vector<int>>(), ElementsAre(100, 110, 120));
    EXPECT_EQ(groups[1]["name"], "backup-tool");
    EXPECT_EQ(groups[2]["isSelf"], true);
    EXPECT_EQ(groups[2]["reason"], "This app");
    EXPECT_EQ(groups[3]["kind"], 2);
    EXPECT_TRUE(groups[3]["allowedActions"].empty());
}

TEST(AppsCommand, ListsThisMachineWithThisProgramReadOnly) {
    std::ostringstream out;
    std::ostringstream err;
    const std::string self = std::to_string(getpid());
    ASSERT_EQ(runProgram({"apps", "--json", "--interval", "0.1", "--search", self}, out, err), 0)
        << err.str();
    const auto groups = nlohmann::json::parse(out.str());
    const auto mine = std::find_if(groups.begin(), groups.end(),
                                   [](const nlohmann::json& group) { return group["isSelf"]; });
    ASSERT_NE(mine, groups.end());
    EXPECT_TRUE((*mine)["allowedActions"].empty());
    EXPECT_EQ((*mine)["reason"], "This app");
}

} // namespace
} // namespace loadwarden

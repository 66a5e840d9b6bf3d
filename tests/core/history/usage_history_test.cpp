#include "core/history/history_json.h"
#include "core/history/usage_history.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace loadwarden {

namespace {

// 2027-01-15 08:00 UTC.
constexpr Date morning = 1'800'000'000.0;
constexpr Seconds day = 86400.0;
const Calendar utc = Calendar::fixedOffset(0);

AppSample sample(std::string key, std::string name, double cpu, std::uint64_t memory = 0) {
    return {.key = std::move(key),
            .name = std::move(name),
            .cpuPercent = cpu,
            .memoryBytes = memory,
            .energyWatts = 2.0,
            .networkPerSecond = std::nullopt};
}

const UsageTotals& totalsOn(const UsageHistory& history, const std::string& dayKey,
                            const std::string& key) {
    return history.days.at(dayKey).at(key).totals;
}

} // namespace

TEST(CalendarTest, DayKeysFollowTheTimeZoneAndCountCalendarDays) {
    EXPECT_EQ(utc.dayKey(morning), "2027-01-15");
    EXPECT_EQ(Calendar::fixedOffset(-9 * 3600.0).dayKey(morning), "2027-01-14");
    EXPECT_EQ(Calendar::fixedOffset(16 * 3600.0).dayKey(morning), "2027-01-16");
    EXPECT_EQ(utc.dayKey(morning, -15), "2026-12-31");
    EXPECT_EQ(utc.dayKey(morning + 45 * day, 0), "2027-03-01"); // not a leap year
}

TEST(UsageHistoryTest, RecordsEachRefreshIntoItsDay) {
    UsageHistory history;
    for (const Seconds ignored : {0.0, 600.0, -1.0}) {
        history.record({sample("app:/A.app", "A", 100)}, morning, utc, ignored);
    }
    EXPECT_TRUE(history.days.empty());

    history.record({sample("app:/A.app", "A", 200, 900)}, morning, utc, 2.0);
    history.record({sample("app:/A.app", "A", 50, 400)}, morning + 2, utc, 599.9);
    const UsageTotals& totals = totalsOn(history, "2027-01-15", "app:/A.app");
    EXPECT_DOUBLE_EQ(totals.cpuSeconds, 4.0 + 299.95);
    EXPECT_EQ(totals.peakMemory, 900u); // never decreases within the day
    EXPECT_DOUBLE_EQ(totals.energyJoules, 2.0 * 601.9);
    EXPECT_DOUBLE_EQ(totals.networkBytes, 0.0);
    EXPECT_DOUBLE_EQ(totals.seenSeconds, 601.9);

    // Across midnight the whole interval goes to the later day.
    const Date afterMidnight = morning + 16 * 3600.0 + 10;
    history.record({sample("app:/A.app", "A", 100)}, afterMidnight, utc, 60.0);
    EXPECT_DOUBLE_EQ(totalsOn(history, "2027-01-16", "app:/A.app").cpuSeconds, 60.0);
    EXPECT_DOUBLE_EQ(totalsOn(history, "2027-01-15", "app:/A.app").cpuSeconds, 303.95);
}

TEST(UsageHistoryTest, PrunesToTheKeptDaysAndSumsTheChosenOnes) {
    UsageHistory history;
    for (int back = 0; back < 36; ++back) {
        history.record({sample("exe:/bin/tool", "tool", 100)}, morning - back * day, utc, 1.0);
    }
    history.prune(morning, UsageHistory::keptDays, utc);
    ASSERT_EQ(history.days.size(), 35u);
    EXPECT_EQ(history.days.begin()->first, "2026-12-12"); // today and the 34 before

    history.record({sample("app:/B.app", "Beta", 3), sample("app:/Z.app", "Alpha", 3)}, morning,
                   utc, 100.0);
    const auto week = history.summary(7, morning, utc);
    ASSERT_EQ(week.size(), 3u);
    EXPECT_EQ(week[0].key, "exe:/bin/tool");
    EXPECT_DOUBLE_EQ(week[0].totals.cpuSeconds, 7.0);
    EXPECT_DOUBLE_EQ(week[0].totals.seenSeconds, 7.0);
    // Equal processor time: by name.
    EXPECT_EQ(week[1].name, "Alpha");
    EXPECT_EQ(week[2].name, "Beta");
    EXPECT_EQ(history.summary(30, morning, utc)[0].totals.cpuSeconds, 30.0);
}

TEST(UsageHistoryTest, KeysToolsByTheirExecutableAndLeavesTheProgramItselfOut) {
    using fixtures::groupOf;
    using fixtures::process;
    EXPECT_EQ(historyKey(groupOf({process(40, "tool", "/usr/bin/tool")})), "exe:/usr/bin/tool");
    EXPECT_EQ(historyKey(groupOf({process(41, "kworker")})), "exe:kworker");
    ProcessGroup app = groupOf({process(42, "Mail")}, GroupKind::app);
    app.id = "app:/Applications/Mail.app";
    EXPECT_EQ(historyKey(app), "app:/Applications/Mail.app");

    // This program runs inside a terminal's group: the terminal is still counted.
    LiveProcess terminal = process(50, "terminal", "/usr/bin/terminal");
    terminal.record.memoryBytes = 300;
    terminal.rates = {.cpuPercent = 5, .energyWatts = 1.5};
    LiveProcess self = process(51, "loadwarden", "/usr/bin/loadwarden", 50);
    self.record.memoryBytes = 700;
    self.rates = {.cpuPercent = 40, .energyWatts = 3.0};
    ProcessGroup shared = groupOf({terminal, self});
    shared.isSelf = true;
    // The group it leads is itself with the tools it runs.
    ProcessGroup led = groupOf({self, process(52, "ss", "/usr/bin/ss", 51)});
    led.isSelf = true;
    // Names from the kernel may be any bytes; keys and names are kept as UTF-8.
    const ProcessGroup odd = groupOf({process(60, "t\xff", "/tmp/t\xff")});
    const auto samples = usageSamples({shared, led, odd}, 51);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[0], (AppSample{.key = "exe:/usr/bin/terminal",
                                     .name = "terminal",
                                     .cpuPercent = 5,
                                     .memoryBytes = 300,
                                     .energyWatts = 1.5,
                                     .networkPerSecond = std::nullopt}));
    EXPECT_EQ(samples[1].key, "exe:/tmp/t\uFFFD");
    EXPECT_EQ(samples[1].name, "t\uFFFD");
}

TEST(UsageHistoryTest, FileShapeRoundTripsAndNewerVersionsAreNotRead) {
    UsageHistory history;
    history.record({sample("exe:/home/ann/bin/sync", "sync", 10, 5)}, morning, utc, 2.0);
    const std::string text = encodeHistory(history);
    EXPECT_EQ(decodeHistory(text), history);
    const auto json = nlohmann::json::parse(text);
    EXPECT_EQ(json.begin().key(), "days"); // sorted keys
    EXPECT_EQ(json["days"]["2027-01-15"]["exe:/home/ann/bin/sync"]["totals"].size(), 5u);

    // Not read: a newer version, the wrong shape, whole numbers that are not.
    for (const char* unread : {R"({"days":{},"version":2})", R"({"days":[],"version":1})",
                               R"({"days":{},"version":1e300})", "not json"}) {
        EXPECT_FALSE(decodeHistory(unread)) << unread;
    }
    auto totals = json["days"]["2027-01-15"]["exe:/home/ann/bin/sync"]["totals"];
    for (const nlohmann::json& peak :
         {nlohmann::json(-1), nlohmann::json(1.5), nlohmann::json(1e300)}) {
        totals["peakMemory"] = peak;
        EXPECT_THROW(totals.get<UsageTotals>(), nlohmann::json::exception) << peak;
    }

    const AppUsage& usage = history.days.begin()->second.begin()->second;
    EXPECT_EQ(usageFolder(usage, "/home/ann"), "~/bin");
    EXPECT_EQ(usageFolder(usage, "/home/an"), "/home/ann/bin");
    EXPECT_EQ(usageFolder({.key = "app:/A.app", .name = "A", .totals = {}}, "/home/ann"),
              std::nullopt);
}

} // namespace loadwarden

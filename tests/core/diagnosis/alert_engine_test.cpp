#include "core/diagnosis/alert_engine.h"
#include "core/diagnosis/alert_text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

namespace loadwarden {
namespace {

constexpr double GB = 1e9;

// Drives an engine the way the refresh loop does, one refresh every two seconds.
class AlertTimeline : public ::testing::Test {
protected:
    AlertEngine engine;
    Date now = 1'700'000'000.0;
    std::map<std::string, AlertEngine::App> running;
    std::set<std::string> stuck;

    void launch(const std::string& name, double cpu) {
        running[key(name)] = {key(name), name, cpu, 1'000'000'000};
    }
    void quit(const std::string& name) { running.erase(key(name)); }
    static std::string key(const std::string& name) { return "app:/Applications/" + name + ".app"; }

    std::vector<AppAlert> refresh() {
        std::vector<AlertEngine::App> apps;
        for (const auto& [_, app] : running) {
            apps.push_back(app);
        }
        return engine.update(apps, stuck, now);
    }

    // Refreshes every two seconds for the span, collecting what was raised.
    std::vector<AppAlert> runFor(Seconds span) {
        std::vector<AppAlert> all;
        for (const Date end = now + span; now < end;) {
            now += 2;
            std::ranges::move(refresh(), std::back_inserter(all));
        }
        return all;
    }

    // Refreshes once a minute while the app's memory climbs from 1 GB by
    // `perMinute`, collecting what was raised.
    std::vector<AppAlert> leakFor(const std::string& name, int minutes, double perMinute = 12.6e6) {
        std::vector<AppAlert> all;
        for (int minute = 0; minute < minutes; ++minute) {
            running[key(name)].memoryBytes =
                static_cast<std::uint64_t>(1 * GB + minute * perMinute);
            std::ranges::move(refresh(), std::back_inserter(all));
            now += 60;
        }
        return all;
    }
};

TEST_F(AlertTimeline, AppRunningHotIsReportedAfterTenMinutesWithItsMeanLoad) {
    launch("Xcode", 85);
    launch("Handbrake", 80); // exactly at the threshold
    refresh();
    EXPECT_TRUE(runFor(598).empty()); // 9 minutes 58 seconds
    running[key("Xcode")].cpuPercent = 147;
    const auto alerts = runFor(2);
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[0].key, key("Handbrake"));
    const AppAlert& xcode = alerts[1];
    EXPECT_EQ(xcode.key, key("Xcode"));
    EXPECT_DOUBLE_EQ(xcode.amount, 10);
    EXPECT_DOUBLE_EQ(xcode.detail, (85.0 * 300 + 147) / 301);
    EXPECT_EQ(AlertText::title(xcode), "Xcode is running hot");
    EXPECT_EQ(AlertText::notificationBody(xcode),
              "It has used 85% of a core for 10 minutes. Open Loadwarden to pause or limit it.");
}

TEST_F(AlertTimeline, OneCoolReadingStartsTheStretchAgain) {
    launch("Xcode", 90);
    refresh();
    runFor(300);
    running[key("Xcode")].cpuPercent = 79.9;
    runFor(2);
    running[key("Xcode")].cpuPercent = 90;
    EXPECT_TRUE(runFor(2).empty());
    EXPECT_TRUE(runFor(598).empty());
    EXPECT_EQ(runFor(2).size(), 1u);
}

TEST_F(AlertTimeline, AnAppThatStaysHotIsRemindedHourlyAndEachAppHasItsOwnCooldown) {
    launch("Xcode", 100);
    refresh();
    EXPECT_EQ(runFor(600).size(), 1u);
    launch("Blender", 350);
    const auto firstHour = runFor(3598);
    ASSERT_EQ(firstHour.size(), 1u);
    EXPECT_EQ(firstHour[0].name, "Blender");
    const auto reminder = runFor(2);
    ASSERT_EQ(reminder.size(), 1u);
    EXPECT_EQ(reminder[0].name, "Xcode");
    EXPECT_DOUBLE_EQ(reminder[0].amount, 70);
}

TEST_F(AlertTimeline, AppStuckForThirtySecondsAndOneThatRecoveredInTime) {
    launch("Pages", 0);
    launch("Numbers", 0);
    stuck = {key("Pages"), key("Numbers")};
    refresh();
    runFor(26);
    stuck.erase(key("Numbers")); // answers again at 28 seconds
    runFor(2);
    stuck.insert(key("Numbers"));
    const auto alerts = runFor(2);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].name, "Pages");
    EXPECT_EQ(AlertText::windowBody(alerts[0]),
              "It has been stuck for 30 seconds. Wait a little, or force quit it here.");
    const auto later = runFor(30);
    ASSERT_EQ(later.size(), 1u);
    EXPECT_EQ(later[0].name, "Numbers");
}

TEST_F(AlertTimeline, MemoryIsSampledEveryFiftyNineSecondsForThreeHours) {
    const Date start = now;
    launch("Mail", 0);
    const auto pointsAfter = [&](Seconds gap) {
        now += gap;
        refresh();
        return engine.points(key("Mail"));
    };
    EXPECT_EQ(pointsAfter(0).size(), 1u);
    EXPECT_EQ(pointsAfter(30).size(), 1u);
    EXPECT_EQ(pointsAfter(29).size(), 2u);
    EXPECT_EQ(pointsAfter(10800 - 59).front().date, start); // exactly three hours old stays
    EXPECT_EQ(pointsAfter(60),
              (std::vector<MemoryPoint>{{start + 10800, 1 * GB}, {start + 10860, 1 * GB}}));
    EXPECT_TRUE(engine.points("app:/Applications/Unknown.app").empty());
}

TEST_F(AlertTimeline, LeakGrowingForFortyMinutesIsReportedOnceThenWaitsAnHour) {
    launch("Slack", 0);
    const auto alerts = leakFor("Slack", 101);
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[0].date, 1'700'000'000.0 + 40 * 60);
    EXPECT_NEAR(alerts[0].amount, 504e6, 1e3);
    EXPECT_EQ(alerts[0].detail, 1'504'000'000.0);
    EXPECT_EQ(alerts[1].date, alerts[0].date + 3600);
    EXPECT_EQ(AlertText::windowBody(alerts[0]),
              "Up 504 MB to 1.5 GB: it may be leaking. Quitting and reopening it resets it.");
    EXPECT_NE(alerts[0].id(), alerts[1].id());
}

TEST_F(AlertTimeline, AnAppThatLeavesStartsOverButKeepsItsCooldown) {
    launch("Slack", 0);
    ASSERT_EQ(leakFor("Slack", 41).size(), 1u);
    quit("Slack");
    refresh();
    EXPECT_TRUE(engine.points(key("Slack")).empty());
    EXPECT_TRUE(engine.lastMemoryPoint.empty());

    // Relaunched and leaking faster; the first alert may come 30 minutes in,
    // but the cooldown from before the quit holds it back until the hour is over.
    launch("Slack", 0);
    const Date relaunch = now;
    const auto raised = leakFor("Slack", 61, 50e6);
    ASSERT_EQ(raised.size(), 1u);
    EXPECT_EQ(raised[0].date - relaunch, 3600 - 60); // an hour after the first alert
}

// Alerts switched off keep tracking, so switching them on raises them at once.
TEST_F(AlertTimeline, OneAppsAlertsComeHotThenLeakThenStuck) {
    engine.settings.hotEnabled = false;
    engine.settings.stuckEnabled = false;
    launch("Chrome", 300);
    stuck = {key("Chrome")};
    EXPECT_TRUE(leakFor("Chrome", 40).empty());
    engine.settings.hotEnabled = true;
    engine.settings.stuckEnabled = true;
    running[key("Chrome")].memoryBytes = static_cast<std::uint64_t>(1 * GB + 40 * 12.6e6);
    const auto alerts = refresh();
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_EQ(alerts[0].kind, AlertKind::runningHot);
    EXPECT_DOUBLE_EQ(alerts[0].amount, 40); // minutes hot, counted from launch
    EXPECT_EQ(alerts[1].kind, AlertKind::memoryLeak);
    EXPECT_EQ(alerts[2].kind, AlertKind::notResponding);
}

TEST(BannerRule, BannersLastThreeMinutesAndHotOnesGoWithTheirApp) {
    const Date raised = 1'700'000'000.0;
    const std::vector<AppAlert> recent{
        {AlertKind::memoryLeak, "app:/A.app", "A", 1e9, 3e9, raised},
        {AlertKind::runningHot, "app:/B.app", "B", 10, 90, raised},
    };
    EXPECT_EQ(BannerRule::visible(recent, {"app:/B.app"}, raised + 180).size(), 2u);
    EXPECT_EQ(BannerRule::visible(recent, {}, raised + 60), (std::vector{recent[0]}));
    EXPECT_TRUE(BannerRule::visible(recent, {"app:/B.app"}, raised + 181).empty());
}

} // namespace
} // namespace loadwarden

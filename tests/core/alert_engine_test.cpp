#include "core/alert_engine.h"
#include "core/alert_text.h"
#include "core/diagnosis_json.h"

#include <gtest/gtest.h>

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

    void launch(const std::string& name, double cpu, double memory = 1 * GB) {
        running[key(name)] = {key(name), name, cpu, static_cast<std::uint64_t>(memory)};
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
            for (auto& alert : refresh()) {
                all.push_back(std::move(alert));
            }
        }
        return all;
    }
};

TEST_F(AlertTimeline, AppRunningHotIsReportedAfterTenMinutesWithItsMeanLoad) {
    launch("Xcode", 85);
    refresh();
    EXPECT_TRUE(runFor(598).empty()); // 9 minutes 58 seconds
    running[key("Xcode")].cpuPercent = 147;
    const auto alerts = runFor(2);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].kind, AlertKind::runningHot);
    EXPECT_EQ(alerts[0].key, key("Xcode"));
    EXPECT_DOUBLE_EQ(alerts[0].amount, 10);
    EXPECT_DOUBLE_EQ(alerts[0].detail, (85.0 * 300 + 147) / 301);
    EXPECT_EQ(AlertText::title(alerts[0]), "Xcode is running hot");
    EXPECT_EQ(AlertText::notificationBody(alerts[0]),
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

TEST_F(AlertTimeline, HotStretchIsTrackedWhileTheAlertIsOff) {
    engine.settings.hotEnabled = false;
    launch("Xcode", 100);
    refresh();
    EXPECT_TRUE(runFor(1200).empty());
    engine.settings.hotEnabled = true;
    const auto alerts = runFor(2);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_NEAR(alerts[0].amount, 20, 0.1);
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
    EXPECT_EQ(alerts[0].kind, AlertKind::notResponding);
    EXPECT_EQ(AlertText::windowBody(alerts[0]),
              "It has been stuck for 30 seconds. Wait a little, or force quit it here.");
    const auto later = runFor(30);
    ASSERT_EQ(later.size(), 1u);
    EXPECT_EQ(later[0].name, "Numbers");
}

TEST_F(AlertTimeline, MemoryIsSampledEveryFiftyNineSecondsForThreeHours) {
    const Date start = now;
    launch("Mail", 0);
    refresh();
    now += 30;
    refresh();
    EXPECT_EQ(engine.points(key("Mail")).size(), 1u);
    now += 29;
    refresh();
    EXPECT_EQ(engine.points(key("Mail")).size(), 2u);

    now = start + 10800;
    refresh();
    EXPECT_EQ(engine.points(key("Mail")).front().date, start); // exactly three hours old stays
    now += 60;
    refresh();
    EXPECT_EQ(engine.points(key("Mail")),
              (std::vector<MemoryPoint>{{start + 10800, 1 * GB}, {start + 10860, 1 * GB}}));
    EXPECT_TRUE(engine.points("app:/Applications/Unknown.app").empty());
}

TEST_F(AlertTimeline, LeakGrowingForFortyMinutesIsReportedOnceThenWaitsAnHour) {
    launch("Slack", 0, 1 * GB);
    std::vector<AppAlert> alerts;
    for (int minute = 0; minute <= 100; ++minute) {
        running[key("Slack")].memoryBytes = static_cast<std::uint64_t>(1 * GB + minute * 12.6e6);
        for (auto& alert : refresh()) {
            alerts.push_back(alert);
        }
        now += 60;
    }
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[0].kind, AlertKind::memoryLeak);
    EXPECT_EQ(alerts[0].date, 1'700'000'000.0 + 40 * 60);
    EXPECT_NEAR(alerts[0].amount, 504e6, 1e3);
    EXPECT_EQ(alerts[0].detail, 1'504'000'000.0);
    EXPECT_EQ(alerts[1].date, alerts[0].date + 3600);
    EXPECT_EQ(AlertText::windowBody(alerts[0]),
              "Up 504 MB to 1.5 GB: it may be leaking. Quitting and reopening it resets it.");
    EXPECT_NE(alerts[0].id(), alerts[1].id());
}

TEST_F(AlertTimeline, AnAppThatLeavesStartsOverButKeepsItsCooldown) {
    launch("Slack", 0, 1 * GB);
    for (int minute = 0; minute <= 40; ++minute) {
        running[key("Slack")].memoryBytes = static_cast<std::uint64_t>(1 * GB + minute * 12.6e6);
        refresh();
        now += 60;
    }
    quit("Slack");
    refresh();
    EXPECT_TRUE(engine.points(key("Slack")).empty());
    EXPECT_TRUE(engine.lastMemoryPoint.empty());

    // Relaunched and leaking faster; the first alert may come 30 minutes in,
    // but the cooldown from before the quit holds it back until the hour is over.
    std::vector<Date> raised;
    const Date relaunch = now;
    for (int minute = 0; minute <= 60; ++minute) {
        launch("Slack", 0, 1 * GB + minute * 50e6);
        for (const auto& alert : refresh()) {
            raised.push_back(alert.date - relaunch);
        }
        now += 60;
    }
    ASSERT_EQ(raised.size(), 1u);
    EXPECT_GE(raised[0], 1800);
    EXPECT_EQ(raised[0], 3600 - 60); // an hour after the first alert, a minute before the quit
}

TEST_F(AlertTimeline, OneAppsAlertsComeHotThenLeakThenStuck) {
    engine.settings.hotEnabled = false;
    engine.settings.stuckEnabled = false;
    launch("Chrome", 300, 1 * GB);
    stuck = {key("Chrome")};
    for (int minute = 0; minute < 40; ++minute) {
        running[key("Chrome")].memoryBytes = static_cast<std::uint64_t>(1 * GB + minute * 12.6e6);
        EXPECT_TRUE(refresh().empty());
        now += 60;
    }
    engine.settings.hotEnabled = true;
    engine.settings.stuckEnabled = true;
    running[key("Chrome")].memoryBytes = static_cast<std::uint64_t>(1 * GB + 40 * 12.6e6);
    const auto alerts = refresh();
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_EQ(alerts[0].kind, AlertKind::runningHot);
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

TEST(AlertSettingsJson, StoredUnderFieldNamesAndDecodedWholeOrNotAtAll) {
    const AlertSettings custom{.hotPercent = 150, .stuckEnabled = false, .repeatMinutes = 15};
    nlohmann::json j = custom;
    EXPECT_EQ(j["hotPercent"], 150);
    EXPECT_EQ(j["stuckEnabled"], false);
    EXPECT_EQ(j.get<AlertSettings>(), custom);
    j.erase("hotMinutes");
    EXPECT_THROW(j.get<AlertSettings>(), nlohmann::json::exception);
}

} // namespace
} // namespace loadwarden

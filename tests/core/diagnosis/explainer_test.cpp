#include "core/diagnosis/cause_text.h"
#include "core/diagnosis/explainer.h"
#include "core/text/platform_wording.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

constexpr double GB = 1e9;
using Kind = Cause::Kind;
using Fix = Cause::Fix;

// A calm 8-core machine with 16 GB, a roomy disk and nothing running.
SystemPicture calmMachine() {
    SystemPicture picture;
    picture.system.coreUsage.assign(8, 0.05);
    picture.system.memory.total = 16'000'000'000;
    picture.system.diskFree = 200'000'000'000;
    picture.system.diskTotal = 500'000'000'000;
    picture.system.uptime = 3 * 86400;
    return picture;
}

ExplainerApp userApp(const std::string& name, double cpu, double memory = 0.4 * GB) {
    return {.key = "app:/Applications/" + name + ".app",
            .name = name,
            .cpuPercent = cpu,
            .memoryBytes = static_cast<std::uint64_t>(memory),
            .canQuit = true,
            .canPause = true,
            .processName = name};
}

ExplainerApp systemProcess(const std::string& processName, double cpu) {
    return {.key = "pid:" + std::to_string(processName.size() + 300),
            .name = processName,
            .kind = GroupKind::system,
            .cpuPercent = cpu,
            .processName = processName};
}

std::vector<Cause> explain(const SystemPicture& picture) {
    return Explainer::explain(picture, 10);
}

TEST(ExplainerBusyApps, ScoreGrowsWithTheShareOfTheProcessorUpToNinetyWithAPauseFix) {
    auto picture = calmMachine();
    auto renderer = userApp("Renderer", 400);
    renderer.helperCount = 3;
    picture.apps = {userApp("Mail", 45), userApp("Compiler", 50), renderer};
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[0].score, 90);
    EXPECT_EQ(causes[0].fix, Fix::pause(renderer.key));
    EXPECT_EQ(CauseText::title(causes[0]),
              "Renderer and its 3 helper processes are using 400% of a processor core.");
    EXPECT_EQ(CauseText::fixLabel(*causes[0].fix, "Renderer"), "Pause Renderer");
    EXPECT_DOUBLE_EQ(causes[1].score, 46.25);
    EXPECT_EQ(CauseText::title(causes[1]), "Compiler is using 50% of a processor core.");
}

TEST(ExplainerBusyApps, StuckAppIsForceQuitAndStillJudgedOnItsLoad) {
    auto picture = calmMachine();
    auto stuck = userApp("Pages", 100);
    stuck.notResponding = true;
    picture.apps = {stuck};
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[0].score, 92);
    EXPECT_EQ(causes[0].fix, Fix::forceQuit(stuck.key));
    EXPECT_EQ(CauseText::title(causes[0]), "Pages isn’t responding.");
    EXPECT_EQ(causes[1].kind, Kind::appCPU);
}

TEST(ExplainerMemory, BigAppUnderPressureTakesTheBlame) {
    auto picture = calmMachine();
    picture.system.memory.pressure = MemoryPressure::warning;
    picture.apps = {userApp("Chrome", 10, 4.8 * GB)};
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_EQ(causes[0].score, 90); // 70 for 30% of memory, 20 for the pressure
    EXPECT_EQ(causes[0].fix, Fix::quit(picture.apps[0].key));
    EXPECT_EQ(CauseText::title(causes[0]),
              "Chrome is using 4.8 GB of memory; memory is short, so " +
                  std::string(isMac ? "macOS" : "the system") + " is swapping to disk.");
}

TEST(ExplainerMemory, PressureWithoutABigAppNamesTheBiggestOneYouCanQuit) {
    auto picture = calmMachine();
    picture.system.memory.pressure = MemoryPressure::critical;
    picture.system.memory.swapUsed = 3'200'000'000;
    picture.apps = {userApp("Notes", 1, 0.9 * GB), userApp("Music", 1, 1.1 * GB),
                    systemProcess("WindowServer", 5), userApp("Maps", 1, 1.1 * GB)};
    picture.apps[2].memoryBytes = 1'900'000'000; // bigger, but not the user's to quit
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_EQ(causes[0].kind, Kind::memoryPressure);
    EXPECT_EQ(causes[0].score, 85);
    EXPECT_EQ(causes[0].appName, "Music");
    EXPECT_EQ(causes[0].fix, Fix::quit(picture.apps[1].key));
    EXPECT_EQ(CauseText::detail(causes[0]), "No single app is to blame. The biggest is Music (1.1 "
                                            "GB); quitting apps you aren’t using gives memory "
                                            "back.");
    EXPECT_TRUE(CauseText::title(causes[0]).ends_with("swapping (3.2 GB on disk)."));
}

TEST(ExplainerMemory, HeavySwapAloneCountsAsPressure) {
    auto picture = calmMachine();
    picture.system.memory.swapUsed = 4'100'000'000; // more than a quarter of 16 GB
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_EQ(causes[0].score, 60);
    EXPECT_EQ(CauseText::detail(causes[0]), "Quit apps you aren’t using to give memory back.");
}

TEST(ExplainerMemory, LeakGrowingForFortyMinutesIsNamedInsteadOfItsSize) {
    auto picture = calmMachine();
    picture.system.memory.pressure = MemoryPressure::warning;
    auto slack = userApp("Slack", 3, 8 * GB); // half of memory
    slack.leakGrowth = 1.2 * GB;
    picture.apps = {slack};
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_DOUBLE_EQ(causes[0].score, 62);
    EXPECT_TRUE(causes[0].pressureHigh);
    EXPECT_EQ(causes[0].fix, Fix::relaunch(slack.key));
    EXPECT_EQ(CauseText::title(causes[0]), "Slack’s memory keeps growing: up 1.2 GB to 8 GB.");
    EXPECT_EQ(CauseText::fixLabel(*causes[0].fix, "Slack"), "Quit and Reopen Slack");
}

TEST(ExplainerSystemAtWork, SpotlightAndBackupsAreNotBlamedOnAnApp) {
    auto picture = calmMachine();
    picture.apps = {systemProcess("mds_stores", 160), systemProcess("mdworker_shared", 60)};
    auto backup = systemProcess("backupd", 5);
    backup.diskBytesPerSecond = 30'000'000;
    picture.apps.push_back(backup);
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 2u); // one cause for all of Spotlight's workers
    EXPECT_EQ(causes[0].kind, Kind::spotlightIndexing);
    EXPECT_EQ(causes[0].score, 50);
    EXPECT_EQ(causes[0].value, 160);
    EXPECT_EQ(causes[0].appKey, std::nullopt);
    EXPECT_EQ(causes[1].kind, Kind::backup);
    EXPECT_EQ(causes[1].value, 30'000'000);
    EXPECT_EQ(CauseText::title(causes[1]), "Time Machine is backing up.");
}

TEST(ExplainerDisk, NearlyFullDiskScoresByWhatIsLeft) {
    const auto scoreFor = [](std::uint64_t free, std::uint64_t total) -> std::optional<double> {
        auto picture = calmMachine();
        picture.system.diskFree = free;
        picture.system.diskTotal = total;
        const auto causes = explain(picture);
        return causes.empty() ? std::nullopt : std::optional(causes[0].score);
    };
    EXPECT_EQ(scoreFor(4'000'000'000, 500'000'000'000), 85);
    EXPECT_EQ(scoreFor(20'000'000'000, 1'000'000'000'000), 85); // 2% of a big disk
    EXPECT_EQ(scoreFor(20'000'000'000, 200'000'000'000), std::nullopt);
    EXPECT_EQ(scoreFor(10'000'000'000, 100'000'000'000), 48);
    EXPECT_EQ(scoreFor(1, 0), std::nullopt);

    auto picture = calmMachine();
    picture.system.diskFree = 4'000'000'000;
    const auto causes = explain(picture);
    EXPECT_EQ(CauseText::title(causes[0]), "The startup disk is almost full: 4 GB free.");
    EXPECT_EQ(causes[0].fix.has_value(), hasSystemSettings);
}

TEST(ExplainerDisk, HeavyTrafficIsCappedInItsScore) {
    auto picture = calmMachine();
    picture.system.diskReadPerSecond = 1.5 * GB;
    picture.system.diskWritePerSecond = 0.5 * GB;
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_EQ(causes[0].score, 50);
    EXPECT_EQ(CauseText::title(causes[0]), "The disk is very busy (2 GB/s).");
}

TEST(ExplainerMachine, HotMachineOutranksBusyApps) {
    auto picture = calmMachine();
    picture.system.thermal = ThermalLevel::serious;
    picture.apps = {userApp("Game", 90)};
    auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[0].kind, Kind::thermal);
    EXPECT_EQ(causes[0].score, 72);
    picture.system.thermal = ThermalLevel::critical;
    causes = explain(picture);
    EXPECT_EQ(causes[0].score, 95);
    EXPECT_EQ(causes[0].value, 3);
    picture.system.thermal = ThermalLevel::fair;
    EXPECT_EQ(explain(picture)[0].kind, Kind::appCPU);
}

TEST(ExplainerMachine, BatteryDrainCountsOnlyOnBattery) {
    auto picture = calmMachine();
    auto video = userApp("Video", 20);
    video.energyWatts = 8;
    picture.apps = {video};
    EXPECT_TRUE(explain(picture).empty());
    picture.system.battery = BatteryInfo{.percent = 0.4, .onBattery = true};
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 1u);
    EXPECT_EQ(causes[0].score, 46);
    EXPECT_EQ(CauseText::title(causes[0]), "Video is drawing about 8 W on battery.");
}

TEST(ExplainerMachine, HeavyStartupItemsLongUptimeAndLowPower) {
    auto picture = calmMachine();
    picture.heavyStartupItems = 2;
    EXPECT_TRUE(explain(picture).empty());
    picture.heavyStartupItems = 15;
    picture.system.uptime = 20 * 86400 + 3600;
    picture.system.memory.swapUsed = 2'500'000'000;
    picture.system.lowPowerMode = true;
    const auto causes = explain(picture);
    ASSERT_EQ(causes.size(), 3u);
    EXPECT_EQ(causes[0].kind, Kind::lowPowerMode);
    EXPECT_EQ(causes[1].kind, Kind::longUptime);
    EXPECT_EQ(causes[2].kind, Kind::startupItems);
    EXPECT_EQ(causes[2].score, 30);
    EXPECT_EQ(causes[2].fix, Fix::showStartupApps());
    EXPECT_EQ(CauseText::title(causes[1]), std::string(isMac ? "Your Mac" : "Your computer") +
                                               " has been on for 20 days and has 2.5 GB in swap.");
    EXPECT_EQ(CauseText::title(causes[2]),
              std::string("15 heavy items start with your ") + (isMac ? "Mac." : "computer."));
}

TEST(ExplainerRanking, WorstFirstAndAtMostTheCountAsked) {
    auto picture = calmMachine();
    picture.system.thermal = ThermalLevel::serious;
    picture.system.diskFree = 4'000'000'000;
    picture.heavyStartupItems = 5;
    picture.apps = {userApp("Game", 400)};
    EXPECT_EQ(Explainer::explain(picture, 10).size(), 4u);
    const auto top = Explainer::explain(picture, 3);
    ASSERT_EQ(top.size(), 3u);
    EXPECT_EQ(top[0].kind, Kind::appCPU);
    EXPECT_EQ(top[1].kind, Kind::lowDiskSpace);
    EXPECT_EQ(top[2].kind, Kind::thermal);
    EXPECT_TRUE(Explainer::explain(picture, 0).empty());
}

} // namespace
} // namespace loadwarden

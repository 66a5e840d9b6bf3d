#include "core/model/app_settings.h"
#include "core/model/graphs.h"
#include "core/model/machine_summary.h"
#include "core/model/menu_bar_state.h"
#include "core/model/window_layout.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace loadwarden {

namespace {

using fixtures::groupOf;
using fixtures::process;

ProcessGroup groupUsing(std::int32_t pid, std::string name, double cpuPercent,
                        GroupKind kind = GroupKind::app) {
    LiveProcess member = process(pid, std::move(name));
    member.rates.cpuPercent = cpuPercent;
    return groupOf({member}, kind);
}

SystemSample sampleAt(std::vector<double> cores) {
    SystemSample sample;
    sample.coreUsage = std::move(cores);
    return sample;
}

} // namespace

TEST(AppSettingsTest, DamagedValuesDoNotDecode) {
    AppSettings changed;
    changed.interval = 5.0;
    changed.onboardingDone = true;
    changed.alerts.hotPercent = 150;
    EXPECT_EQ(decodeSettings(encodeSettings(changed)), changed);

    // All or nothing: one missing or mistyped key and nothing decodes.
    auto json = nlohmann::json::parse(encodeSettings(changed));
    json.erase("hotKey");
    EXPECT_EQ(decodeSettings(json.dump()), std::nullopt);
    json = nlohmann::json::parse(encodeSettings(changed));
    json["alerts"].erase("repeatMinutes");
    EXPECT_EQ(decodeSettings(json.dump()), std::nullopt);
    json = nlohmann::json::parse(encodeSettings(changed));
    json["interval"] = "5";
    EXPECT_EQ(decodeSettings(json.dump()), std::nullopt);
    EXPECT_EQ(decodeSettings("{not json"), std::nullopt);
}

TEST(WindowLayoutTest, OnlyAWholeLayoutDecodes) {
    const WindowLayout layout{.geometry = "AdnQywADAAAAAA",
                              .tab = Tab::details,
                              .tables = {{"processes", "AAAA/wAAAAA"}, {"details", ""}}};
    EXPECT_EQ(decodeWindowLayout(encodeWindowLayout(layout)), layout);

    auto json = nlohmann::json::parse(encodeWindowLayout(layout));
    json["tab"] = "sidebar";
    EXPECT_EQ(decodeWindowLayout(json.dump()), std::nullopt);
    json = nlohmann::json::parse(encodeWindowLayout(layout));
    json["tables"]["processes"] = 7;
    EXPECT_EQ(decodeWindowLayout(json.dump()), std::nullopt);
    json = nlohmann::json::parse(encodeWindowLayout(layout));
    json.erase("geometry");
    EXPECT_EQ(decodeWindowLayout(json.dump()), std::nullopt);
    EXPECT_EQ(decodeWindowLayout("[]"), std::nullopt);
    EXPECT_EQ(decodeWindowLayout(""), std::nullopt);
}

TEST(MachineSummaryTest, CountsProcessesAndGivesProcessorAndMemory) {
    SystemSample sample = sampleAt({0.5, 0.25});
    sample.memory.total = 16'000'000'000;
    sample.memory.app = 7'100'000'000;
    EXPECT_EQ(machineSummary(312, sample), "312 processes · CPU 38% · Memory 7.1 GB of 16 GB");
    EXPECT_EQ(machineSummary(1, sampleAt({})), "1 process · CPU 0% · Memory 0 bytes of 0 bytes");
}

TEST(GraphsTest, RecordsEveryFigureAndStartsCoresAfreshWhenTheirNumberChanges) {
    Graphs graphs;
    SystemSample sample = sampleAt({0.5, 1.0});
    sample.memory.swapUsed = 4096;
    graphs.record(sample, 10.0);
    EXPECT_EQ(graphs.cpu.values(), std::vector<double>{0.75});
    ASSERT_EQ(graphs.cores.size(), 2u);
    EXPECT_EQ(graphs.cores[1].values(), std::vector<double>{1.0});
    EXPECT_EQ(graphs.swap.values(), std::vector<double>{4096.0});
    EXPECT_EQ(graphs.gpu.values(), std::vector<double>{0.0}); // no figure
    EXPECT_EQ(graphs.battery.values(), std::vector<double>{0.0});
    EXPECT_TRUE(graphs.energy.values().empty()); // the tick's own

    graphs.record(sampleAt({0.1, 0.2, 0.3, 0.4}), 11.0);
    ASSERT_EQ(graphs.cores.size(), 4u);
    for (const Series& core : graphs.cores) {
        EXPECT_EQ(core.values().size(), 1u);
    }
    EXPECT_EQ(graphs.cpu.values().size(), 2u);

    graphs.recordLight(sampleAt({1.0}), 16.0);
    EXPECT_EQ(graphs.cpu.values().size(), 3u);
    EXPECT_EQ(graphs.quickReadAt.values(), (std::vector<double>{10.0, 11.0, 16.0}));
    EXPECT_EQ(graphs.readAt.values(), (std::vector<double>{10.0, 11.0}));
    EXPECT_EQ(graphs.memory.values().size(), 3u);
    EXPECT_EQ(graphs.diskRead.values().size(), 2u);
    EXPECT_EQ(graphs.cores[0].values().size(), 1u);
}

TEST(MenuBarStateTest, NamesTheBusiestAppFromHalfACore) {
    const SystemSample sample = sampleAt({0.25, 0.25});
    EXPECT_EQ(MenuBarState::compute(sample, {}, false).text, "25%");

    const auto at = [&](double percent) {
        return MenuBarState::compute(sample, {groupUsing(10, "Compressor Deluxe Edition", percent)},
                                     false)
            .text;
    };
    EXPECT_EQ(at(49.9), "25%");
    EXPECT_EQ(at(50.0), "25% · Compressor Del");

    // The system's groups and the program itself are never named; the busier
    // of the rest is, cut at 14 characters, not bytes.
    ProcessGroup self = groupUsing(20, "Loadwarden", 300);
    self.isSelf = true;
    const std::vector<ProcessGroup> groups{groupUsing(1, "kernel_task", 400, GroupKind::system),
                                           self, groupUsing(30, "Überweisungsprüfer", 80),
                                           groupUsing(31, "Mail", 79)};
    EXPECT_EQ(MenuBarState::compute(sample, groups, true).text, "25% · Überweisungspr");
    EXPECT_TRUE(MenuBarState::compute(sample, groups, true).busy);

    EXPECT_EQ(hotGroupKeys(groups, 80), std::set<std::string>{"pid:30"});
}

} // namespace loadwarden

#include "core/diagnosis/diagnosis.h"
#include "tests/core/grouping/process_fixtures.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using fixtures::process;
using fixtures::rootProcess;
using Fix = Cause::Fix;

constexpr std::int32_t selfPID = 100;

LiveProcess busy(LiveProcess live, double cpu, std::uint64_t memory = 50'000'000) {
    live.rates.cpuPercent = cpu;
    live.record.memoryBytes = memory;
    return live;
}

// A refresh of an 8-core machine: this program, a runaway shell job, a busy
// kernel worker and Safari with one helper.
class DiagnosisOfARefresh : public ::testing::Test {
protected:
    SystemSample system;
    std::vector<LiveProcess> processes{
        busy(process(selfPID, "loadwarden", "/usr/local/bin/loadwarden"), 300),
        busy(process(200, "yes", "/usr/bin/yes"), 100),
        busy(rootProcess(300, "kworker/u16:2"), 150),
        busy(process(400, "Safari", "/Applications/Safari.app/Contents/MacOS/Safari"), 12,
             900'000'000),
        busy(process(401, "Safari Web Content",
                     "/Applications/Safari.app/Contents/XPCServices/WebContent.xpc/WebContent",
                     400),
             8, 600'000'000),
    };

    DiagnosisOfARefresh() {
        system.coreUsage.assign(8, 0.5);
        system.memory.total = 16'000'000'000;
    }

    SystemPicture picture(const AlertEngine& history = AlertEngine{}) const {
        const auto groups = ProcessGrouper::group(processes, {{400, "Safari"}}, selfPID);
        return Diagnosis::picture(system, groups, {}, history, 0);
    }
};

TEST_F(DiagnosisOfARefresh, RunawayJobIsPausableUnlessPausedAndTheKernelIsLeftAlone) {
    auto causes = Explainer::explain(picture(), 5);
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[0].appName, "kworker/u16:2");
    EXPECT_EQ(causes[0].fix, std::nullopt);
    EXPECT_EQ(causes[1].appKey, "pid:200");
    EXPECT_EQ(causes[1].fix, Fix::pause("pid:200"));

    processes[1].record.state = RunState::stopped;
    causes = Explainer::explain(picture(), 5);
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[1].fix, Fix::quit("pid:200"));
}

TEST_F(DiagnosisOfARefresh, AppsAddUpTheirHelpers) {
    const auto apps = picture().apps;
    const auto safari = std::ranges::find(apps, "Safari", &ExplainerApp::name);
    ASSERT_NE(safari, apps.end());
    EXPECT_EQ(safari->cpuPercent, 20);
    EXPECT_EQ(safari->memoryBytes, 1'500'000'000u);
    EXPECT_EQ(safari->helperCount, 1);
    EXPECT_EQ(safari->processName, "Safari");
    EXPECT_TRUE(safari->canQuit);
}

TEST_F(DiagnosisOfARefresh, BusiestListLeavesThisProgramOut) {
    std::vector<std::string> names;
    for (const auto& app : Diagnosis::busiest(picture().apps, 2)) {
        names.push_back(app.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"kworker/u16:2", "yes"}));
    EXPECT_EQ(Diagnosis::busiest(picture().apps, 10).size(), 3u);
}

TEST_F(DiagnosisOfARefresh, LeakFoundInTheAlertHistoryIsNamedWithARelaunch) {
    AlertEngine history;
    Date now = 1'700'000'000.0;
    for (int minute = 0; minute <= 40; ++minute) {
        const auto memory = static_cast<std::uint64_t>(1e9 + minute * 30e6);
        history.update({{"pid:200", "yes", 1, memory}}, {}, now);
        processes[1].record.memoryBytes = memory;
        now += 60;
    }
    const auto causes = Explainer::explain(picture(history), 5);
    const auto leak = std::ranges::find(causes, Cause::Kind::appLeak, &Cause::kind);
    ASSERT_NE(leak, causes.end());
    EXPECT_NEAR(leak->extra, 1.2e9, 1e3);
    EXPECT_EQ(leak->fix, Fix::relaunch("pid:200"));
}

} // namespace
} // namespace loadwarden

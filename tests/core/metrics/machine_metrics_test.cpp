#include "core/metrics/exposition.h"
#include "core/metrics/machine_metrics.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using fixtures::groupOf;
using fixtures::process;

LiveProcess running(std::int32_t pid, double cpuSeconds, Date started = 1000.0,
                    double cpuPercent = 0.0) {
    LiveProcess live = process(pid, "p" + std::to_string(pid));
    live.record.cpuTimeNs = static_cast<std::uint64_t>(cpuSeconds * 1e9);
    live.record.started = started;
    live.record.memoryBytes = 1'000'000;
    live.rates.cpuPercent = cpuPercent;
    return live;
}

ProcessGroup app(std::string id, std::vector<LiveProcess> members) {
    ProcessGroup group = groupOf(std::move(members), GroupKind::app);
    group.id = id;
    group.name = id;
    return group;
}

const MetricFamily& family(const std::vector<MetricFamily>& families, const std::string& name) {
    for (const MetricFamily& family : families) {
        if (family.name == name) {
            return family;
        }
    }
    throw std::runtime_error("no family " + name);
}

// The value of the series whose "app" label is `id`; absent when there is none.
std::optional<double> forApp(const MetricFamily& family, const std::string& id) {
    for (const MetricSample& sample : family.samples) {
        if (!sample.labels.empty() && sample.labels.front() == std::pair<std::string, std::string>{"app", id}) {
            return sample.value;
        }
    }
    return std::nullopt;
}

struct Scrape {
    SystemSample system;
    std::map<std::string, double> limits;
    std::vector<Cause> causes;
    std::map<AlertKind, std::uint64_t> alerts;

    std::vector<MetricFamily> of(const std::vector<ProcessGroup>& groups,
                                 const UsageCounters& counters, std::int32_t self = 0) const {
        return machineMetrics({system, groups, counters, limits, causes, alerts, self});
    }
};

TEST(UsageCounters, AnAppsProcessorTimeNeverGoesBackWhenItsHelpersComeAndGo) {
    UsageCounters counters;
    counters.record({app("app:a", {running(10, 10), running(11, 5)})}, {}, 2, 50);
    EXPECT_DOUBLE_EQ(counters.app("app:a")->cpuSeconds, 15);
    // The helper ended; the leader used one more second.
    counters.record({app("app:a", {running(10, 11)})}, {}, 2, 50);
    EXPECT_DOUBLE_EQ(counters.app("app:a")->cpuSeconds, 16);
    // A new helper took the old one's pid: all its time is new.
    counters.record({app("app:a", {running(10, 11), running(11, 0.5, 2000.0)})}, {}, 2, 50);
    EXPECT_DOUBLE_EQ(counters.app("app:a")->cpuSeconds, 16.5);
    // An app that went is forgotten; coming back it starts from its processes again.
    counters.record({app("app:b", {running(20, 1)})}, {}, 2, 50);
    EXPECT_EQ(counters.app("app:a"), nullptr);
    counters.record({app("app:a", {running(10, 12)}), app("app:b", {running(20, 1)})}, {}, 2, 50);
    EXPECT_DOUBLE_EQ(counters.app("app:a")->cpuSeconds, 12);
}

TEST(UsageCounters, DiskAndNetworkCountOnlyWhereMeasured) {
    LiveProcess reader = running(10, 1);
    reader.record.diskReadBytes = 4096;
    reader.rates.networkInPerSecond = 100;
    UsageCounters counters;
    SystemSample system;
    system.diskWritePerSecond = 50;
    system.networkInPerSecond = 10;
    counters.record({app("app:a", {reader}), app("app:b", {running(20, 1)})}, system, 2, 50);
    reader.record.diskReadBytes = 6144;
    counters.record({app("app:a", {reader}), app("app:b", {running(20, 1)})}, system, 3, 50);
    const auto& a = *counters.app("app:a");
    EXPECT_EQ(a.diskReadBytes, 6144);
    EXPECT_EQ(a.networkReceivedBytes, 500); // 100/s over 2 s, then over 3 s
    EXPECT_FALSE(a.diskWrittenBytes);
    EXPECT_FALSE(counters.app("app:b")->diskReadBytes);
    EXPECT_DOUBLE_EQ(counters.system().diskWrittenBytes, 250);
    EXPECT_DOUBLE_EQ(counters.system().networkReceivedBytes, 50);
}

TEST(MachineMetrics, AppsBeyondTheBusiestFoldIntoOtherWhoseCounterStillOnlyRises) {
    UsageCounters counters;
    const auto tick = [&](double busyA, double busyB, double usedA, double usedB) {
        std::vector<ProcessGroup> groups{
            app("app:a", {running(10, usedA, 1000, busyA)}),
            app("app:b", {running(20, usedB, 1000, busyB)}),
            app("app:c", {running(30, 1, 1000, 50), running(31, 1, 1000, 0)}),
        };
        counters.record(groups, {}, 2, 2);
        return groups;
    };
    auto groups = tick(90, 10, 100, 50);
    auto families = Scrape{}.of(groups, counters);
    const auto& cpu = family(families, "loadwarden_app_cpu_seconds");
    EXPECT_EQ(forApp(cpu, "app:a"), 100);
    EXPECT_EQ(forApp(cpu, "app:c"), 2);
    EXPECT_FALSE(forApp(cpu, "app:b"));
    EXPECT_EQ(forApp(cpu, "other"), 50);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_processes"), "other"), 1);

    // b becomes busy and c falls into the fold: other rises by what c did, never falls.
    groups = tick(0, 95, 101, 60);
    families = Scrape{}.of(groups, counters);
    const auto& after = family(families, "loadwarden_app_cpu_seconds");
    EXPECT_EQ(forApp(after, "app:b"), 60);
    EXPECT_FALSE(forApp(after, "app:a"));
    EXPECT_EQ(forApp(after, "other"), 51);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_processes"), "other"), 1);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_processes"), "app:c"), 2);

    // Every process is counted once: the apps' counts add up to the machine's.
    double sum = 0;
    for (const MetricSample& sample : family(families, "loadwarden_app_processes").samples) {
        sum += sample.value;
    }
    EXPECT_EQ(sum, family(families, "loadwarden_processes").samples.front().value);
}

TEST(MachineMetrics, StateCausesAlertsAndSelfAreReported) {
    LiveProcess stopped = running(20, 1);
    stopped.record.state = RunState::stopped;
    LiveProcess self = running(30, 2.5);
    self.record.memoryBytes = 40'000'000;
    const std::vector<ProcessGroup> groups{app("app:a", {running(10, 1)}), app("app:p", {stopped}),
                                           app("app:me", {self})};
    UsageCounters counters;
    counters.record(groups, {}, 2, 50);
    Scrape scrape;
    scrape.limits = {{"app:a", 50}};
    scrape.causes = {{.kind = Cause::Kind::appCPU, .score = 80, .appKey = "app:a"},
                     {.kind = Cause::Kind::memoryPressure, .score = 40}};
    scrape.alerts = {{AlertKind::memoryLeak, 3}};
    const auto families = scrape.of(groups, counters, 30);

    EXPECT_EQ(forApp(family(families, "loadwarden_app_paused"), "app:p"), 1);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_paused"), "app:a"), 0);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_limited"), "app:a"), 1);
    EXPECT_EQ(forApp(family(families, "loadwarden_app_limited"), "app:p"), 0);

    const auto& causes = family(families, "loadwarden_cause_severity").samples;
    ASSERT_EQ(causes.size(), 2u);
    EXPECT_EQ(causes[0].labels, (MetricLabels{{"cause", "appCPU"}, {"app", "app:a"}}));
    EXPECT_EQ(causes[0].value, 80);
    EXPECT_EQ(causes[1].labels, (MetricLabels{{"cause", "memoryPressure"}, {"app", ""}}));

    const auto& alerts = family(families, "loadwarden_alerts_raised").samples;
    ASSERT_EQ(alerts.size(), 3u); // every kind, raised or not
    EXPECT_EQ(alerts[1].labels, (MetricLabels{{"kind", "memoryLeak"}}));
    EXPECT_EQ(alerts[1].value, 3);
    EXPECT_EQ(alerts[0].value, 0);

    EXPECT_EQ(family(families, "loadwarden_process_cpu_seconds").samples.front().value, 2.5);
    EXPECT_EQ(family(families, "loadwarden_process_resident_memory_bytes").samples.front().value,
              40'000'000);
}

TEST(MachineMetrics, FiguresTheSystemDoesNotGiveAreLeftOut) {
    const std::vector<ProcessGroup> groups{app("app:a", {running(10, 1)})};
    UsageCounters counters;
    counters.record(groups, {}, 2, 50);
    Scrape scrape;
    scrape.system.coreUsage = {0.5, 0.25};
    std::string text = expose(scrape.of(groups, counters), ExpositionFormat::text);
    for (const char* absent : {"loadwarden_battery_charge_ratio", "loadwarden_gpu_usage_ratio",
                               "loadwarden_app_gpu_usage_ratio", "loadwarden_app_disk_read",
                               "loadwarden_app_network", "loadwarden_process_cpu"}) {
        EXPECT_EQ(text.find(absent), std::string::npos) << absent;
    }
    EXPECT_NE(text.find("loadwarden_cpu_usage_ratio 0.375\n"), std::string::npos);
    EXPECT_NE(text.find("loadwarden_cpu_core_usage_ratio{core=\"1\",kind=\"standard\"} 0.25\n"),
              std::string::npos);

    scrape.system.battery = BatteryInfo{.percent = 0.8};
    scrape.system.gpu = 0.3;
    text = expose(scrape.of(groups, counters), ExpositionFormat::text);
    EXPECT_NE(text.find("loadwarden_battery_charge_ratio 0.8\n"), std::string::npos);
    EXPECT_NE(text.find("loadwarden_gpu_usage_ratio 0.3\n"), std::string::npos);
}

} // namespace
} // namespace loadwarden

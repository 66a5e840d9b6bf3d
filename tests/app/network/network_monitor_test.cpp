#include "app/network/net_top_source.h"
#include "app/network/network_monitor.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {
namespace {

// Prints whatever script the test sets, in nettop's format.
class ScriptedSource final : public NetworkSource {
public:
    explicit ScriptedSource(std::shared_ptr<std::string> script) : script_(std::move(script)) {}

    std::string toolPath() const override { return "/bin/sh"; }
    std::vector<std::string> arguments() const override { return {"-c", *script_}; }
    std::optional<NetworkSample> sample(std::string_view output) override {
        return format_.sample(output);
    }
    std::string_view coverageNote() const override { return {}; }

private:
    std::shared_ptr<std::string> script_;
    NetTopSource format_;
};

// Network column shown at a 2 s interval: runs 6 s apart.
constexpr SamplingPlan watched{.windowVisible = true, .networkShown = true, .interval = 2.0};
// Window closed: runs 120 s apart.
constexpr SamplingPlan hidden{.windowVisible = false, .networkShown = false, .interval = 2.0};

void waitForRuns(const NetworkMonitor& monitor, int count) {
    for (int wait = 0; wait < 2000 && monitor.runs() < count; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(monitor.runs(), count);
}

class NetworkMonitorTest : public testing::Test {
protected:
    std::shared_ptr<std::string> script = std::make_shared<std::string>();
    // The date each run ends at, as the monitor reads it.
    std::shared_ptr<std::atomic<Date>> runEnds = std::make_shared<std::atomic<Date>>(0.0);
    NetworkMonitor monitor{std::make_unique<ScriptedSource>(script),
                           NetworkMonitor::ToolLimits{.timeout = 0.5, .cpuLimit = 1.0},
                           [ends = runEnds] { return ends->load(); }};
    static constexpr Date start = 1'800'000'000.0;

    // A run that ends at `end`, having printed `output`; waits for it.
    void run(const SamplingPlan& plan, Date at, Date end, const std::string& output, int count) {
        *script = output;
        runEnds->store(end);
        ASSERT_TRUE(monitor.poke(plan, at));
        waitForRuns(monitor, count);
    }

    // Two good runs whose ends lie 8 s apart, while pokes come 6 s apart.
    void runTwice(const SamplingPlan& plan = watched) {
        run(plan, start, start + 2.0, "echo a.10,1000,100,; echo b.11,5,5,", 1);
        EXPECT_FALSE(monitor.rates(plan, start + 2.0)) << "one reading gives no rates";
        run(plan, start + 6.0, start + 10.0, "echo a.10,3000,300,; echo c.12,9,9,", 2);
    }
};

TEST_F(NetworkMonitorTest, RatesAreBytesOverTheTimeBetweenTheEndsOfTwoRuns) {
    runTwice();
    const auto rates = monitor.rates(watched, start + 10.0);
    ASSERT_TRUE(rates);
    EXPECT_EQ(rates->since, start + 2.0);
    EXPECT_EQ(rates->byPID, (NetworkRateMap{{10, {.in = 2000.0 / 8.0, .out = 200.0 / 8.0}},
                                            {12, NetworkRate{}}}));
}

TEST_F(NetworkMonitorTest, FirstRatesComeWithinSixSecondsThenRunsFollowTheView) {
    run(hidden, start, start, "echo a.10,1,1,", 1);
    EXPECT_FALSE(monitor.poke(hidden, start + 5.9));
    run(hidden, start + 6.0, start + 6.0, "echo a.10,2,2,", 2);
    // With rates in hand, a closed window needs them only every 120 s.
    EXPECT_FALSE(monitor.poke(hidden, start + 125.9));
    EXPECT_FALSE(monitor.poke(watched, start + 11.9));
    EXPECT_TRUE(monitor.poke(watched, start + 12.0));
}

TEST_F(NetworkMonitorTest, OneRunAtATime) {
    const auto go = std::filesystem::temp_directory_path() /
                    ("network-monitor-go-" + std::to_string(::getpid()));
    std::filesystem::remove(go);
    run(watched, start, start, "echo a.10,1,1,", 1);
    *script = "while [ ! -e '" + go.string() + "' ]; do sleep 0.01; done; echo a.10,2,2,";
    ASSERT_TRUE(monitor.poke(watched, start + 6.0));
    EXPECT_FALSE(monitor.poke(watched, start + 600.0)) << "the first run is still going";
    std::ofstream(go).put('\n');
    waitForRuns(monitor, 2);
    std::filesystem::remove(go);
    EXPECT_TRUE(monitor.poke(watched, start + 600.0));
}

TEST_F(NetworkMonitorTest, KilledRunWidensTheGapAndItsOutputIsNeverUsed) {
    runTwice();
    const auto before = monitor.rates(watched, start + 10.0);
    run(watched, start + 12.0, start + 13.0, "echo a.10,999999,999999,; sleep 10", 3);
    EXPECT_EQ(monitor.rates(watched, start + 13.0), before);
    // Four times the 6 s gap, and the same rates stay fresh for 2 × 24 + 10 s.
    EXPECT_FALSE(monitor.poke(watched, start + 35.9));
    EXPECT_TRUE(monitor.rates(watched, start + 10.0 + 57.9));
    EXPECT_FALSE(monitor.rates(watched, start + 10.0 + 58.0));
    // A cheap run halves the factor again: the next gap is 12 s.
    run(watched, start + 36.0, start + 37.0, "echo a.10,4000,400,", 4);
    EXPECT_FALSE(monitor.poke(watched, start + 47.9));
    EXPECT_TRUE(monitor.poke(watched, start + 48.0));
}

TEST(NetworkMonitor, DestroyingWaitsForARunInProgressToFinish) {
    const auto finished = std::filesystem::temp_directory_path() /
                          ("network-monitor-finished-" + std::to_string(::getpid()));
    std::filesystem::remove(finished);
    auto script = std::make_shared<std::string>("sleep 0.3; echo a.1,1,1,; touch '" +
                                                finished.string() + "'");
    auto monitor = std::make_unique<NetworkMonitor>(std::make_unique<ScriptedSource>(script),
                                                    NetworkMonitor::ToolLimits{});
    ASSERT_TRUE(monitor->poke(watched, 0.0));
    monitor.reset();
    EXPECT_TRUE(std::filesystem::exists(finished));
    std::filesystem::remove(finished);
}

TEST(NetworkMonitor, WithoutItsToolNeverRunsAndHasNoRates) {
    NetworkMonitor monitor(nullptr, NetworkMonitor::ToolLimits{});
    EXPECT_FALSE(monitor.poke(watched, 0.0));
    EXPECT_FALSE(monitor.available());
    EXPECT_EQ(monitor.runs(), 0);
    EXPECT_FALSE(monitor.rates(watched, 0.0));
    EXPECT_EQ(monitor.coverageNote(), "");
}

} // namespace
} // namespace loadwarden

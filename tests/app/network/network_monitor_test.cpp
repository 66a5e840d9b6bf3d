#include "app/foundation/clock.h"
#include "app/network/net_top_source.h"
#include "app/network/network_monitor.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

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

constexpr SamplingPlan watched{.windowVisible = true, .networkShown = true, .interval = 2.0};

void waitForRuns(const NetworkMonitor& monitor, int count) {
    for (int wait = 0; wait < 2000 && monitor.runs() < count; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(monitor.runs(), count);
}

class NetworkMonitorTest : public testing::Test {
protected:
    std::shared_ptr<std::string> script = std::make_shared<std::string>();
    NetworkMonitor monitor{std::make_unique<ScriptedSource>(script),
                           NetworkMonitor::ToolLimits{.timeout = 0.5, .cpuLimit = 1.0}};
    const Date start = currentDate();

    // Two good runs, 6 s apart by the plan's dates.
    void runTwice() {
        *script = "echo a.10,1000,100,; echo b.11,5,5,";
        monitor.poke(watched, start);
        waitForRuns(monitor, 1);
        EXPECT_FALSE(monitor.rates(watched, currentDate())) << "one reading gives no rates";
        *script = "echo a.10,3000,300,; echo c.12,9,9,";
        monitor.poke(watched, start + 6.0);
        waitForRuns(monitor, 2);
    }
};

TEST_F(NetworkMonitorTest, RatesFollowTheSecondGoodRunUntilTheyGoStale) {
    runTwice();
    const auto rates = monitor.rates(watched, currentDate());
    ASSERT_TRUE(rates);
    ASSERT_EQ(rates->size(), 2u);
    EXPECT_GT(rates->at(10).in, 0.0);
    EXPECT_DOUBLE_EQ(rates->at(10).in, 10.0 * rates->at(10).out);
    EXPECT_EQ(rates->at(12), NetworkRate{}) << "new process";

    // With the network column shown and a 2 s interval, runs are 6 s apart
    // and their rates count as fresh for 2 × 6 + 10 s.
    EXPECT_TRUE(monitor.rates(watched, currentDate() + 21.0));
    EXPECT_FALSE(monitor.rates(watched, currentDate() + 23.0));
}

TEST_F(NetworkMonitorTest, KilledRunSlowsRunsButItsOutputIsNeverUsed) {
    runTwice();
    const auto before = monitor.rates(watched, currentDate());
    *script = "echo a.10,999999,999999,; sleep 10";
    monitor.poke(watched, start + 12.0);
    waitForRuns(monitor, 3);
    EXPECT_EQ(monitor.rates(watched, currentDate()), before);
    // Four times the gap: the same rates stay fresh for 2 × 24 + 10 s.
    EXPECT_TRUE(monitor.rates(watched, currentDate() + 50.0));
}

TEST_F(NetworkMonitorTest, DestroyingWaitsForARunInProgress) {
    auto slow = std::make_shared<std::string>("sleep 0.3; echo a.1,1,1,");
    auto shortLived = std::make_unique<NetworkMonitor>(std::make_unique<ScriptedSource>(slow),
                                                       NetworkMonitor::ToolLimits{});
    shortLived->poke(watched, start);
    shortLived.reset();
}

TEST(NetworkMonitor, WithoutItsToolNeverRunsAndHasNoRates) {
    NetworkMonitor monitor(nullptr, NetworkMonitor::ToolLimits{});
    monitor.poke(watched, currentDate());
    EXPECT_FALSE(monitor.available());
    EXPECT_EQ(monitor.runs(), 0);
    EXPECT_FALSE(monitor.rates(watched, currentDate()));
    EXPECT_EQ(monitor.coverageNote(), "");
}

} // namespace
} // namespace loadwarden

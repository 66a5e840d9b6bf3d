#include "shell/commands.h"
#include "shell/snapshot_report.h"

#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace loadwarden {
namespace {

LiveProcess live(std::int32_t pid, std::string name, double cpuPercent, std::uint64_t memory) {
    return LiveProcess{.record = {.pid = pid,
                                  .user = "ada",
                                  .name = std::move(name),
                                  .memoryBytes = memory,
                                  .state = RunState::sleeping},
                       .rates = {.cpuPercent = cpuPercent}};
}

TEST(SnapshotReport, BusiestFirstWithDashesForWhatIsUnknown) {
    Snapshot snapshot;
    snapshot.processes = {live(30, "idle", 0.0, 5'000'000), live(10, "busy", 150.0, 1'000),
                          live(20, "some", 12.5, 2'000'000)};
    snapshot.processes[2].rates.diskBytesPerSecond = 2'500'000;
    snapshot.processes[2].record.threads = 4;
    snapshot.processes[1].rates.gpuPercent = 87.0;
    snapshot.system.coreUsage = {0.5, 1.0};
    snapshot.system.coreKinds = {CoreKind::efficiency, CoreKind::performance};
    std::ostringstream out;
    snapshot.hasNetwork = true;
    printSnapshotReport(snapshot, "Network: live TCP connections only", out);
    const std::string report = out.str();

    const auto busy = report.find("busy");
    const auto some = report.find("some");
    const auto idle = report.find("idle");
    EXPECT_LT(busy, some);
    EXPECT_LT(some, idle);
    const auto lineStart = report.rfind('\n', some) + 1;
    const std::string line = report.substr(lineStart, report.find('\n', some) - lineStart);
    EXPECT_NE(line.find("13%"), std::string::npos) << line;
    EXPECT_NE(line.find("2 MB"), std::string::npos) << line;
    EXPECT_NE(line.find("2.5 MB/s            -       -        4  Sleeping"), std::string::npos)
        << line;
    EXPECT_NE(report.find("87%"), std::string::npos) << "the busy one's graphics share";
    EXPECT_NE(report.find("CPU         75% of 2 cores (performance 100%, efficiency 50%)"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find("\nProcesses   3; Network: live TCP connections only\n"),
              std::string::npos)
        << report;
}

TEST(SnapshotCommand, JSONOfThisMachineUsesTheDataModelsFieldNames) {
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(runSnapshotCommand({"--json", "--ticks", "2", "--interval", "0.2"}, out, err), 0)
        << err.str();
    const auto json = nlohmann::json::parse(out.str());
    EXPECT_NEAR(json.at("interval").get<double>(), 0.2, 0.15);
    EXPECT_GT(json.at("date").get<double>(), 1.7e9);
    EXPECT_GT(json.at("system").at("memory").at("total").get<double>(), 0.0);
    EXPECT_TRUE(json.at("system").at("gpu").is_null());

    const auto self = std::find_if(
        json.at("processes").begin(), json.at("processes").end(),
        [](const auto& process) { return process.at("record").at("pid") == getpid(); });
    ASSERT_NE(self, json.at("processes").end());
    EXPECT_EQ(self->at("record").at("name"), "shell_tests");
#ifdef __linux__
    EXPECT_EQ(self->at("record").at("energyNJ"), nullptr); // Linux keeps no energy per process
#endif
    EXPECT_TRUE(fromRawValue<RunState>(self->at("record").at("state").get<std::string>()));
    EXPECT_TRUE(self->at("rates").at("cpuPercent").is_number());
}

} // namespace
} // namespace loadwarden

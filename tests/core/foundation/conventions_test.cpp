// The conventions every value type follows: raw values, JSON coding, hashing
// and checked arithmetic.
#include "core/foundation/checked_arithmetic.h"
#include "core/measurement/measurement_json.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace loadwarden {
namespace {

TEST(RawValues, RoundTripEveryCaseAndRejectUnknownNames) {
    for (const auto state : allCases<RunState>()) {
        EXPECT_EQ(fromRawValue<RunState>(rawValue(state)), state);
    }
    EXPECT_EQ(rawValue(Architecture::appleSilicon), "appleSilicon");
    EXPECT_EQ(rawValue(CoreKind::efficiency), "efficiency");
    EXPECT_FALSE(fromRawValue<Architecture>("AppleSilicon"));
    EXPECT_FALSE(fromRawValue<RunState>(""));
}

ProcessRecord sampleRecord() {
    return ProcessRecord{.pid = 7,
                         .ppid = 1,
                         .responsiblePID = 7,
                         .uid = 501,
                         .user = "ada",
                         .name = "Editor",
                         .path = "/Applications/Editor.app/Contents/MacOS/Editor",
                         .started = 1700000000.123456,
                         .isOwn = true,
                         .cpuTimeNs = 99,
                         .memoryBytes = 1 << 20,
                         .diskReadBytes = 10,
                         .energyNJ = std::nullopt,
                         .threads = 4,
                         .state = RunState::running,
                         .arch = Architecture::rosetta};
}

TEST(JsonCoding, SystemSampleRoundTripsWithPressureAsItsInteger) {
    SystemSample sample;
    sample.coreUsage = {0.25, 1.0};
    sample.coreKinds = {CoreKind::efficiency, CoreKind::performance};
    sample.memory.pressure = MemoryPressure::critical;
    sample.battery = BatteryInfo{.percent = 0.5, .onBattery = true, .minutesLeft = 90};
    sample.thermal = ThermalLevel::serious;
    sample.diskFree = 123;
    const nlohmann::json j = sample;
    EXPECT_EQ(j["memory"]["pressure"], 4);
    EXPECT_EQ(j["thermal"], "serious");
    EXPECT_TRUE(j["gpu"].is_null());
    EXPECT_EQ(j.get<SystemSample>(), sample);
}

TEST(JsonCoding, UnknownRawValuesFailToDecode) {
    EXPECT_THROW((nlohmann::json("sideways").get<ThermalLevel>()), nlohmann::json::exception);
    EXPECT_THROW((nlohmann::json(3).get<MemoryPressure>()), nlohmann::json::exception);
    const Series series(4, {1, 2});
    EXPECT_EQ(nlohmann::json(series).get<Series>(), series);
}

TEST(Hashing, EqualValuesHashEquallyAndWorkAsKeys) {
    std::unordered_set<ProcessRecord> records{sampleRecord(), sampleRecord()};
    EXPECT_EQ(records.size(), 1u);
    auto other = sampleRecord();
    other.threads.reset();
    records.insert(other);
    EXPECT_EQ(records.size(), 2u);
    const SamplingPlan plan{.windowVisible = true, .networkShown = false, .interval = 2};
    EXPECT_EQ(std::hash<SamplingPlan>{}(plan), std::hash<SamplingPlan>{}(plan));
    EXPECT_NE(std::hash<SamplingPlan>{}(plan),
              std::hash<SamplingPlan>{}(SamplingPlan{.windowVisible = false, .interval = 2}));
}

TEST(CheckedArithmeticDeathTest, OverflowAbortsWithAClearMessage) {
    EXPECT_EQ(checkedAdd(UINT64_MAX - 1, 1), UINT64_MAX);
    EXPECT_DEATH(checkedAdd(UINT64_MAX, 1), "unsigned overflow in addition");
    EXPECT_DEATH(checkedMultiply(1ull << 32, 1ull << 32), "unsigned overflow in multiplication");
    EXPECT_EQ(counterDelta(10, 4), 0u);
}

} // namespace
} // namespace loadwarden

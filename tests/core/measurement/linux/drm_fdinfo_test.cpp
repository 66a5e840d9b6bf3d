#include "core/measurement/linux/drm_fdinfo.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

// An Intel integrated graphics client as the i915 driver prints it.
std::string i915Client(std::uint64_t renderNs, std::uint64_t videoNs) {
    const std::string render = std::to_string(renderNs);
    const std::string video = std::to_string(videoNs);
    return "pos:    0\nflags:  0100002\nmnt_id: 21\nino:    1234\ndrm-driver:     i915\n"
           "drm-pdev:       0000:00:02.0\ndrm-client-id:  7\n"
           "drm-engine-render:      " +
           render +
           " ns\ndrm-engine-copy:        0 ns\n"
           "drm-engine-video:       " +
           video + " ns\ndrm-engine-capacity-video:      2\n";
}

// A client of Intel's newer xe driver, which counts cycles beside the engine's clock.
std::string xeClient(std::uint64_t renderCycles, std::uint64_t clock) {
    return "drm-driver:     xe\ndrm-client-id:  3\ndrm-pdev:       0000:03:00.0\n"
           "drm-total-gtt:  192 KiB\ndrm-cycles-rcs: " +
           std::to_string(renderCycles) + "\ndrm-total-cycles-rcs:   " + std::to_string(clock) +
           "\n";
}

TEST(DrmFdinfo, ClientWithItsEnginesInNanosecondsOrCycles) {
    const auto i915 = parseDrmFdinfo(i915Client(9'288'864'723, 0));
    ASSERT_TRUE(i915);
    EXPECT_EQ(i915->device, "0000:00:02.0");
    EXPECT_EQ(i915->id, 7u);
    EXPECT_EQ(i915->engines.size(), 3u);
    EXPECT_EQ(i915->engines.at("render"), (DrmClient::Engine{.busy = 9'288'864'723}));
    EXPECT_EQ(i915->engines.at("video").capacity, 2u);

    const auto xe = parseDrmFdinfo(xeClient(28'257'900, 7'655'183'225));
    ASSERT_TRUE(xe);
    EXPECT_EQ(xe->engines.at("rcs"),
              (DrmClient::Engine{.busy = 28'257'900, .clock = 7'655'183'225}));

    // Without a pci address the driver names the device.
    EXPECT_EQ(parseDrmFdinfo("drm-driver: v3d\ndrm-client-id: 2\n")->device, "v3d");
    // A file that is no graphics client: a pipe, a socket.
    EXPECT_FALSE(parseDrmFdinfo("pos:\t0\nflags:\t02004002\nmnt_id:\t15\nino:\t3117\n"));
}

TEST(DrmFdinfo, BusiestEngineClassOverTheTimeBetweenReadings) {
    const auto before = *parseDrmFdinfo(i915Client(1'000'000'000, 0));
    // In 2 s: render busy 0.5 s; the video class, two engines, busy 3 s between them.
    const auto after = *parseDrmFdinfo(i915Client(1'500'000'000, 3'000'000'000));
    EXPECT_DOUBLE_EQ(drmBusyByDevice({before}, {after}, 2.0).at("0000:00:02.0"), 0.75);

    // Cycles are measured against the engine's clock, whatever the wall time.
    const auto xeBefore = *parseDrmFdinfo(xeClient(1'000, 10'000));
    const auto xeAfter = *parseDrmFdinfo(xeClient(3'000, 14'000));
    EXPECT_DOUBLE_EQ(drmBusyByDevice({xeBefore}, {xeAfter}, 99.0).at("0000:03:00.0"), 0.5);
}

TEST(DrmFdinfo, ClientsAddUpNewOnesWaitAndNothingRunsPastFull) {
    auto first = *parseDrmFdinfo(i915Client(0, 0));
    auto second = first;
    second.id = 8;
    auto firstLater = first;
    firstLater.engines["render"].busy = 600'000'000;
    auto secondLater = second;
    secondLater.engines["render"].busy = 300'000'000;
    EXPECT_DOUBLE_EQ(
        drmBusyByDevice({first, second}, {firstLater, secondLater}, 1.0).at("0000:00:02.0"), 0.9);
    // A client first seen now is known, but measured from the next reading on.
    EXPECT_EQ(drmBusyByDevice({first}, {firstLater, secondLater}, 1.0).at("0000:00:02.0"), 0.6);
    EXPECT_EQ(drmBusyByDevice({}, {secondLater}, 1.0).at("0000:00:02.0"), 0.0);
    // Counters that ran backwards give 0; two clients over-reporting stop at full.
    EXPECT_EQ(drmBusyByDevice({firstLater}, {first}, 1.0).at("0000:00:02.0"), 0.0);
    EXPECT_EQ(drmBusyByDevice({first, second}, {firstLater, secondLater}, 0.5).at("0000:00:02.0"),
              1.0);
    EXPECT_EQ(drmBusyByDevice({first}, {firstLater}, 0.0).at("0000:00:02.0"), 0.0);
}

} // namespace
} // namespace loadwarden

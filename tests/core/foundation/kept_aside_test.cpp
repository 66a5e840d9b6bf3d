#include "core/foundation/kept_aside.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Date evening = 1'795'464'900.75; // 2026-11-23 20:15:00.75 UTC

TEST(KeptAsideTest, NamesCarryTheDateInUTCAndANumberWithinTheSameSecond) {
    const KeptAside history = KeptAside::file("history.json");
    EXPECT_EQ(history.plan(evening, {}).name, "history-2026-11-23T201500Z.json");
    EXPECT_EQ(history.plan(evening + 13'499.0, {}).name, "history-2026-11-23T235959Z.json");
    EXPECT_EQ(KeptAside::key("settings").plan(evening, {}).name,
              "settings.unreadable-2026-11-23T201500Z");
    EXPECT_EQ(KeptAside::file("ledger").plan(evening, {}).name, "ledger-2026-11-23T201500Z");

    EXPECT_EQ(history.plan(evening, {"history-2026-11-23T201500Z.json"}).name,
              "history-2026-11-23T201500Z-2.json");
    EXPECT_EQ(
        history
            .plan(evening, {"history-2026-11-23T201500Z.json", "history-2026-11-23T201500Z-2.json"})
            .name,
        "history-2026-11-23T201500Z-3.json");
}

TEST(KeptAsideTest, OnlyTheNewestCopiesOfTheSameNameStay) {
    const KeptAside history = KeptAside::file("history.json");
    const std::vector<std::string> others{"history.json",
                                          "history-notes.json",
                                          "history-2026-11-23T201500Z.json.tmp",
                                          "journal-2020-01-01T000000Z.json",
                                          "history-2020-01-01T000000Z-1.json",
                                          "history-2020-01-01T000000Z-x.json"};
    EXPECT_THAT(history.plan(evening, others).dropped, IsEmpty());

    std::vector<std::string> existing = others;
    existing.insert(existing.end(),
                    {"history-2026-11-23T201500Z-10.json", "history-2026-11-22T090000Z.json",
                     "history-2026-11-23T201500Z-9.json", "history-2026-11-23T201500Z.json"});
    EXPECT_THAT(history.plan(evening, existing).dropped,
                ElementsAre("history-2026-11-22T090000Z.json", "history-2026-11-23T201500Z.json"));

    // A clock set back: the copy made now stays all the same.
    const auto earlier = history.plan(evening - 86'400.0 * 400, existing);
    EXPECT_EQ(earlier.name, "history-2025-10-19T201500Z.json");
    EXPECT_EQ(earlier.dropped.size(), 2u);
    EXPECT_THAT(earlier.dropped, testing::Not(testing::Contains(earlier.name)));
}

} // namespace
} // namespace loadwarden

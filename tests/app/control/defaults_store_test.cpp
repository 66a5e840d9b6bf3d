#include "app/control/defaults_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(DefaultsStoreTest, AValueKeptAsideMovesToADatedKeyAndOnlyTheNewestThreeCopiesStay) {
    QTemporaryDir folder;
    Date now = 1'795'464'900.0; // 2026-11-23 20:15:00 UTC
    const DefaultsStore store(folder.filePath("defaults.conf").toStdString(),
                              [&now] { return now; });
    ASSERT_TRUE(store.write("pausedLedger", "a ledger that stays"));
    EXPECT_EQ(store.keepAside("settings"), std::nullopt); // nothing stored

    std::vector<std::optional<std::string>> keys;
    for (int round = 0; round < 5; ++round, now += 60.0) {
        ASSERT_TRUE(store.write("settings", "{damaged " + std::to_string(round)));
        keys.push_back(store.keepAside("settings"));
        EXPECT_EQ(store.read("settings"), std::nullopt);
    }
    EXPECT_EQ(keys[4], "settings.unreadable-2026-11-23T201900Z");
    EXPECT_EQ(store.read(keys[1].value_or("")), std::nullopt);
    EXPECT_EQ(store.read(keys[2].value_or("")), "{damaged 2");
    EXPECT_EQ(store.read(keys[4].value_or("")), "{damaged 4");
    EXPECT_EQ(store.read("pausedLedger"), "a ledger that stays");
}

} // namespace
} // namespace loadwarden

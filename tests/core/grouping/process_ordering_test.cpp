// Ordering, totals, search and heat of the process table.
#include "core/grouping/heat.h"
#include "core/grouping/process_grouper.h"
#include "core/text/natural_order.h"
#include "tests/core/grouping/process_fixtures.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace loadwarden {
namespace {

using namespace fixtures;
using ::testing::ElementsAre;

ProcessGroup lone(std::int32_t pid, std::string name, GroupKind kind, ProcessRates rates = {}) {
    auto member = process(pid, std::move(name));
    member.rates = rates;
    return groupOf({member}, kind);
}

std::vector<std::string> names(const std::vector<ProcessGroup>& groups) {
    std::vector<std::string> result(groups.size());
    std::ranges::transform(groups, result.begin(), &ProcessGroup::name);
    return result;
}

TEST(NaturalOrder, IgnoresCaseAndComparesNumbersByValue) {
    const auto before = [](std::string_view a, std::string_view b) {
        return naturalCompare(a, b) < 0 && naturalCompare(b, a) > 0;
    };
    EXPECT_TRUE(before("file9", "file10"));
    EXPECT_TRUE(before("apple", "Banana"));
    EXPECT_TRUE(before("Helper", "Helper (GPU)"));
    EXPECT_TRUE(before("x99999999999999999999998", "x99999999999999999999999"));
    EXPECT_TRUE(before("émile", "Zoe"));
    EXPECT_TRUE(before("Éclair", "eclairs"));
    // Names that differ only in case or in leading zeros are still ordered,
    // the same way every time.
    EXPECT_TRUE(before("File", "file"));
    EXPECT_TRUE(before("a01", "a1"));
    EXPECT_TRUE(naturalCompare("Same", "Same") == 0);
    EXPECT_TRUE(before("bad\xff", "bad\xff\xfe"));
}

TEST(Totals, SumMembersAndStayAbsentOnlyWhenNoMemberHasTheFigure) {
    auto a = process(1, "a");
    a.record.memoryBytes = 3'000'000'000;
    a.rates = {.cpuPercent = 12.5, .energyWatts = 0.0, .networkOutPerSecond = 200.0};
    auto b = process(2, "b");
    b.record.memoryBytes = 2'000'000'000;
    b.rates = {.cpuPercent = 50.0, .diskBytesPerSecond = 4096.0, .networkInPerSecond = 100.0};
    const ProcessGroup group = groupOf({a, b});
    EXPECT_DOUBLE_EQ(group.totalCPU(), 62.5);
    EXPECT_EQ(group.totalMemory(), 5'000'000'000u);
    EXPECT_EQ(group.totalEnergy(), 0.0);
    EXPECT_EQ(group.totalDisk(), 4096.0);
    EXPECT_EQ(group.totalNetwork(), 300.0);

    const ProcessGroup bare = groupOf({process(3, "c")});
    EXPECT_FALSE(bare.totalEnergy());
    EXPECT_FALSE(bare.totalNetwork());
}

TEST(SortGroups, SectionsNeverMixWhateverTheColumnAndDirection) {
    const std::vector groups{
        lone(1, "kernel", GroupKind::system, {.cpuPercent = 90}),
        lone(2, "daemon", GroupKind::background, {.cpuPercent = 70}),
        lone(3, "Mail", GroupKind::app, {.cpuPercent = 1}),
        lone(4, "Notes", GroupKind::app, {.cpuPercent = 40}),
    };
    EXPECT_THAT(names(ProcessGrouper::sortGroups(groups, ProcessColumn::cpu, false)),
                ElementsAre("Notes", "Mail", "daemon", "kernel"));
    EXPECT_THAT(names(ProcessGrouper::sortGroups(groups, ProcessColumn::cpu, true)),
                ElementsAre("Mail", "Notes", "daemon", "kernel"));
}

TEST(SortGroups, AbsentTotalsSortBelowZeroAndTiesGoByNameAscending) {
    auto stillEqual = lone(5, "Beta", GroupKind::app, {.energyWatts = 0.0});
    stillEqual.id = "second Beta";
    const std::vector groups{
        lone(1, "Delta", GroupKind::app),
        lone(2, "Beta", GroupKind::app, {.energyWatts = 0.0}),
        lone(3, "alpha", GroupKind::app, {.energyWatts = 0.0}),
        lone(4, "Gamma", GroupKind::app, {.energyWatts = 2.0}),
        stillEqual,
    };
    const auto ascending = ProcessGrouper::sortGroups(groups, ProcessColumn::energy, true);
    EXPECT_THAT(names(ascending), ElementsAre("Delta", "alpha", "Beta", "Beta", "Gamma"));
    EXPECT_EQ(ascending[3].id, "second Beta"); // equal names keep their order
    EXPECT_THAT(names(ProcessGrouper::sortGroups(groups, ProcessColumn::energy, false)),
                ElementsAre("Gamma", "alpha", "Beta", "Beta", "Delta"));
}

TEST(SortMembers, ColumnThenNameThenPid) {
    auto noReading = process(30, "worker");
    auto zeroWatts = process(40, "worker");
    zeroWatts.rates.energyWatts = 0.0;
    auto busy = process(10, "Worker");
    busy.rates.energyWatts = 3.0;
    auto sameAsFirst = process(20, "worker");
    const ProcessGroup group{.leader = busy, .members = {busy, sameAsFirst, noReading, zeroWatts}};
    EXPECT_THAT(pids(ProcessGrouper::sortMembers(group, ProcessColumn::energy, true)),
                ElementsAre(20, 30, 40, 10));
    EXPECT_THAT(pids(ProcessGrouper::sortMembers(group, ProcessColumn::energy, false)),
                ElementsAre(10, 40, 20, 30));
}

class Search : public ::testing::Test {
protected:
    const ProcessGroup safari =
        groupOf({process(210, "Safari"), process(305, "Networking"), process(4711, "WebContent")},
                GroupKind::app);
    const std::vector<ProcessGroup> groups{lone(77, "Terminal", GroupKind::app), safari,
                                           lone(400, "Web Inspector", GroupKind::background)};
};

TEST_F(Search, TermsAreLowercasedPiecesBetweenSpaces) {
    EXPECT_THAT(ProcessGrouper::searchTerms("  Safari   4 ÉTÉ "),
                ElementsAre("safari", "4", "été"));
    EXPECT_TRUE(ProcessGrouper::searchTerms("   ").empty());
}

TEST_F(Search, EveryTermMustMatchTheGroupItsMembersOrTheirPids) {
    EXPECT_THAT(names(ProcessGrouper::filter(groups, "safari 4")), ElementsAre("Safari"));
    EXPECT_THAT(names(ProcessGrouper::filter(groups, "web")),
                ElementsAre("Safari", "Web Inspector"));
    EXPECT_THAT(names(ProcessGrouper::filter(groups, "")),
                ElementsAre("Terminal", "Safari", "Web Inspector"));
    EXPECT_TRUE(ProcessGrouper::filter(groups, "safari terminal").empty());
}

TEST_F(Search, MembersShownUnderAMatchingGroup) {
    EXPECT_EQ(ProcessGrouper::visibleMembers(safari, "").size(), 3u);
    EXPECT_EQ(ProcessGrouper::visibleMembers(safari, "SAF").size(), 3u);
    EXPECT_THAT(pids(ProcessGrouper::visibleMembers(safari, "webcontent")), ElementsAre(4711));
    EXPECT_THAT(pids(ProcessGrouper::visibleMembers(safari, "30")), ElementsAre(305));
    // Matched only by group and member together: the group shows, no member does.
    EXPECT_TRUE(ProcessGrouper::visibleMembers(safari, "safari 4711").empty());
}

TEST_F(Search, ReturnSelectsTheFirstVisibleMemberOrElseTheGroup) {
    EXPECT_EQ(ProcessGrouper::firstMatchKey(groups, "web"), "m:4711");
    EXPECT_EQ(ProcessGrouper::firstMatchKey(groups, "safari"), "m:210");
    EXPECT_EQ(ProcessGrouper::firstMatchKey(groups, "safari 4711"), "pid:210");
    EXPECT_FALSE(ProcessGrouper::firstMatchKey(groups, " "));
    EXPECT_FALSE(ProcessGrouper::firstMatchKey(groups, "nothing"));
}

TEST(Heat, LevelIsTheNumberOfThresholdsReached) {
    using Heat::Metric;
    EXPECT_EQ(Heat::level(4.99, Metric::cpu), 0);
    EXPECT_EQ(Heat::level(5, Metric::cpu), 1);
    EXPECT_EQ(Heat::level(850, Metric::cpu), 4);
    EXPECT_EQ(Heat::level(std::nullopt, Metric::cpu), 0);
    EXPECT_EQ(Heat::level(std::nan(""), Metric::energy), 0);
    EXPECT_EQ(Heat::level(std::numeric_limits<double>::infinity(), Metric::disk), 0);
    // Decimal units: 300 MB, not 300 MiB.
    EXPECT_EQ(Heat::level(299'999'999, Metric::memory), 0);
    EXPECT_EQ(Heat::level(300'000'000, Metric::memory), 1);
    EXPECT_EQ(Heat::level(-1, Metric::network), 0);
}

} // namespace
} // namespace loadwarden

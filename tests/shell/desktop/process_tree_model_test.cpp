#include "shell/desktop/process_tree_model.h"
#include "tests/shell/desktop/desktop_support.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QTreeView>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

LiveProcess process(std::int32_t pid, std::string name, double cpu, std::uint64_t memory = 0) {
    return {.record = {.pid = pid,
                       .ppid = 1,
                       .responsiblePID = pid,
                       .name = std::move(name),
                       .isOwn = true,
                       .memoryBytes = memory,
                       .state = RunState::running},
            .rates = {.cpuPercent = cpu}};
}

ProcessGroup group(std::string id, std::string name, GroupKind kind,
                   std::vector<LiveProcess> members) {
    return {.id = std::move(id),
            .name = std::move(name),
            .kind = kind,
            .leader = members.front(),
            .members = std::move(members)};
}

std::string keyAt(const QModelIndex& index) {
    return index.data(ProcessTreeModel::keyRole).toString().toStdString();
}

std::vector<std::string> rowsUnder(const ProcessTreeModel& model, const QModelIndex& parent) {
    std::vector<std::string> keys;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        keys.push_back(keyAt(model.index(row, 0, parent)));
    }
    return keys;
}

class ProcessTreeModelTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureWidgetApplication(); }

    void SetUp() override {
        view.setModel(&model);
        view.setSortingEnabled(true);
        view.sortByColumn(1, Qt::DescendingOrder);
        view.resize(720, 300);
    }

    std::vector<ProcessGroup> firstTick() const {
        return {group("app:/Editor.app", "Editor", GroupKind::app,
                      {process(100, "Editor", 30, 300'000'000), process(101, "Renderer", 60),
                       process(102, "Indexer", 5)}),
                group("pid:200", "backupd", GroupKind::background, {process(200, "backupd", 20)}),
                group("pid:300", "cron", GroupKind::background, {process(300, "cron", 1)})};
    }

    ProcessTreeModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QTreeView view;
};

TEST_F(ProcessTreeModelTest, SelectionAndExpansionSurviveProcessesComingAndGoing) {
    model.update(firstTick(), {});
    ASSERT_EQ(rowsUnder(model, {}), (std::vector<std::string>{"section:0", "section:1"}));
    const QModelIndex editor = model.indexOfKey("app:/Editor.app");
    EXPECT_EQ(rowsUnder(model, editor), (std::vector<std::string>{"m:101", "m:100", "m:102"}));
    view.expandAll();
    view.setCurrentIndex(model.indexOfKey("m:100"));
    support::saveScreenshot(view, "processes-first-tick");

    // The renderer quits, a helper starts, backupd ends and a new tool runs.
    auto next = firstTick();
    next[0].members = {process(100, "Editor", 70, 310'000'000), process(102, "Indexer", 2),
                       process(103, "Spellcheck", 9)};
    next[1] = group("pid:400", "rsync", GroupKind::background, {process(400, "rsync", 95)});
    model.update(next, {{"pid:400", 50.0}});
    EXPECT_EQ(keyAt(view.currentIndex()), "m:100");
    EXPECT_TRUE(view.isExpanded(model.indexOfKey("app:/Editor.app")));
    EXPECT_EQ(rowsUnder(model, model.indexOfKey("section:1")),
              (std::vector<std::string>{"pid:400", "pid:300"}));
    EXPECT_EQ(model.indexOfKey("pid:400").data().toString(), "rsync  Limited 50%");
    EXPECT_EQ(model.indexOfKey("m:100").siblingAtColumn(1).data().toString(), "70%");
    support::saveScreenshot(view, "processes-next-tick");
}

TEST_F(ProcessTreeModelTest, SortsByAHeaderAndFiltersBySearch) {
    model.update(firstTick(), {});
    view.sortByColumn(0, Qt::AscendingOrder);
    EXPECT_EQ(rowsUnder(model, model.indexOfKey("section:1")),
              (std::vector<std::string>{"pid:200", "pid:300"}));
    view.sortByColumn(2, Qt::DescendingOrder); // memory
    EXPECT_EQ(rowsUnder(model, model.indexOfKey("app:/Editor.app")).front(), "m:100");

    model.setSearch("index");
    EXPECT_EQ(rowsUnder(model, {}), (std::vector<std::string>{"section:0"}));
    EXPECT_EQ(rowsUnder(model, model.indexOfKey("app:/Editor.app")),
              (std::vector<std::string>{"m:102"}));
    view.expandAll();
    support::saveScreenshot(view, "processes-search");
    model.setSearch("");
    EXPECT_EQ(rowsUnder(model, {}).size(), 2u);
}

} // namespace
} // namespace loadwarden

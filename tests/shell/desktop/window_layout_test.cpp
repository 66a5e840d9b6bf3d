// The window's layout across a restart: its place and size, the tab, and each
// table's columns and sorting, on the same settings folder.
#include "app/control/defaults_store.h"
#include "core/details/process_details.h"
#include "shell/desktop/column_chooser.h"
#include "shell/desktop/details_tab.h"
#include "shell/desktop/main_window.h"
#include "shell/desktop/processes_tab.h"
#include "tests/shell/desktop/desktop_support.h"

#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTreeView>
#include <QTreeWidget>
#include <gtest/gtest.h>
#include <memory>

namespace loadwarden {
namespace {

QAction* actionNamed(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

enum ProcessesColumn { name, cpu, memory, energy, disk, network, gpu };

// One run of the program: a model that is never started, and its window.
struct ProgramRun {
    ProgramRun() : model(AppModel::machineParts()), window(model) {
        window.restoreLayout();
        window.show();
    }
    QHeaderView& processes() { return *window.processesTab().view().header(); }
    QHeaderView& details() { return *window.detailsTab().table().header(); }

    AppModel model;
    MainWindow window;
};

class WindowLayoutTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureWidgetApplication(); }

    support::PrivateHome home;
};

TEST_F(WindowLayoutTest, ARestartFindsTheWindowAsItWasLeft) {
    const int sandboxed = static_cast<int>(ProcessFact::sandboxed);
    {
        ProgramRun first;
        first.window.setGeometry(40, 30, 820, 540);
        first.window.showTab(Tab::details);
        first.processes().hideSection(energy);
        first.processes().resizeSection(memory, 150);
        first.processes().moveSection(first.processes().visualIndex(network), 1);
        first.processes().setSortIndicator(memory, Qt::AscendingOrder);
        first.details().hideSection(sandboxed);
        first.window.close(); // as the user leaves it
    }
    ProgramRun second;
    support::saveScreenshot(second.window, "layout-restored");
    EXPECT_EQ(second.window.currentTab(), Tab::details);
    EXPECT_EQ(second.model.tab(), Tab::details);
    EXPECT_EQ(second.window.size(), QSize(820, 540));
    EXPECT_TRUE(second.processes().isSectionHidden(energy));
    EXPECT_EQ(second.processes().sectionSize(memory), 150);
    EXPECT_EQ(second.processes().visualIndex(network), 1);
    EXPECT_EQ(second.processes().sortIndicatorSection(), memory);
    EXPECT_EQ(second.processes().sortIndicatorOrder(), Qt::AscendingOrder);
    // The table sorts as its header says, and the model knows it.
    EXPECT_EQ(second.window.processesTab().tableModel().sortColumn(), ProcessColumn::memory);
    EXPECT_TRUE(second.model.sortAscending());
    EXPECT_TRUE(second.details().isSectionHidden(sandboxed));
    EXPECT_FALSE(second.details().isSectionHidden(static_cast<int>(ProcessFact::cpu)));
}

TEST_F(WindowLayoutTest, ADamagedLayoutLeavesTheWindowAsItIsMade) {
    const DefaultsStore defaults;
    {
        ProgramRun first;
        first.window.showTab(Tab::startup);
        first.processes().hideSection(gpu);
        first.window.close();
    }
    const std::string saved = *defaults.read("window");

    ASSERT_TRUE(defaults.write("window", saved.substr(0, saved.size() / 2)));
    {
        ProgramRun cut;
        EXPECT_EQ(cut.window.currentTab(), Tab::processes);
        EXPECT_FALSE(cut.processes().isSectionHidden(gpu));
    }
    // Whole, but a header's record is not one: that table alone is as made.
    std::string damaged = saved;
    const std::size_t record = damaged.find("\"processes\":\"") + 13;
    damaged.replace(record, 12, "bm90IGEgaGVh");
    ASSERT_TRUE(defaults.write("window", damaged));
    ProgramRun partly;
    EXPECT_EQ(partly.window.currentTab(), Tab::startup);
    EXPECT_FALSE(partly.processes().isSectionHidden(gpu));
    EXPECT_EQ(partly.processes().count(), 7);
}

TEST_F(WindowLayoutTest, ColumnsAreChosenFromTheHeaderOrTheViewMenu) {
    ProgramRun run;
    run.window.showTab(Tab::processes);
    QMenu menu;
    fillColumnMenu(menu, run.processes());
    ASSERT_EQ(menu.actions().size(), 7);
    EXPECT_EQ(menu.actions()[0]->text(), "Name");
    EXPECT_FALSE(menu.actions()[0]->isEnabled()); // the column that names the row stays
    EXPECT_TRUE(menu.actions()[energy]->isChecked());
    menu.actions()[energy]->trigger();
    EXPECT_TRUE(run.processes().isSectionHidden(energy));
    support::saveScreenshot(run.window, "layout-energy-hidden");

    // The View menu offers the shown tab's columns, in the order shown.
    run.processes().moveSection(run.processes().visualIndex(gpu), 1);
    QMenu* columns = nullptr;
    for (QAction* action : run.window.menuBar()->actions()) {
        if (action->text() == "&View") {
            for (QAction* item : action->menu()->actions()) {
                columns = item->text() == "Columns" ? item->menu() : columns;
            }
        }
    }
    ASSERT_NE(columns, nullptr);
    emit columns->aboutToShow();
    ASSERT_EQ(columns->actions().size(), 7);
    EXPECT_EQ(columns->actions()[1]->text(), "GPU");
    EXPECT_FALSE(actionNamed(*columns, "Energy")->isChecked());
    run.window.showTab(Tab::performance);
    emit columns->aboutToShow();
    ASSERT_EQ(columns->actions().size(), 1);
    EXPECT_FALSE(columns->actions()[0]->isEnabled());
}

} // namespace
} // namespace loadwarden

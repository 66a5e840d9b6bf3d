// The window: acting on a process, the program itself, shortcuts, the
// meter, the settings and the About box.
#include "core/details/process_details.h"
#include "core/foundation/program.h"
#include "core/model/machine_summary.h"
#include "shell/desktop/details_tab.h"
#include "shell/desktop/menu_bar_meter.h"
#include "shell/desktop/qt_text.h"
#include "shell/desktop/settings_window.h"
#include "shell/desktop/welcome_dialog.h"
#include "tests/shell/desktop/window_fixture.h"
#include "tests/support/spinning_children.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using MainWindowTest = support::WindowTest;

TEST_F(MainWindowTest, ActsOnAProcessFromItsMenuAndConfirmsAForceQuit) {
    QTreeView& view = window->processesTab().view();
    // Rates need two readings; the picture shows the spinner at work.
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return spinnerRow().siblingAtColumn(1).data().toString() != "0%"; }));
    view.setCurrentIndex(spinnerRow());
    support::saveScreenshot(*window, "window-processes");
    const ProcessGroup group = *table().groupAt(spinnerRow());
    EXPECT_EQ(model->selection(), group.id);

    QMenu menu;
    window->actions().fill(menu, group);
    QAction* pause = support::actionNamed(menu, QString::fromStdString("Pause " + group.name));
    ASSERT_NE(pause, nullptr);
    pause->trigger();
    EXPECT_EQ(support::settlesAt(spinner, 'T'), 'T');
    // The next refresh marks it paused in the row, in Details and in the
    // meter's tooltip, and the same command resumes it.
    MenuBarMeter meter(*model);
    const auto nameCell = [&] { return spinnerRow().data().toString(); };
    const auto detailsState = [&] {
        SortableRow* row = window->detailsTab().rowOf(spinner);
        return row ? row->text(static_cast<int>(ProcessFact::state)) : QString();
    };
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return spinnerRow().isValid() && table().groupAt(spinnerRow())->isPaused(); }));
    window->showTab(Tab::details);
    ASSERT_TRUE(support::processEventsUntil([&] { return detailsState() == "Paused"; }));
    window->showTab(Tab::processes);
    EXPECT_TRUE(nameCell().endsWith("  Paused")) << nameCell().toStdString();
    support::saveScreenshot(*window, "window-paused");
#ifndef __APPLE__
    // Other apps on this machine may be stopped too: the count is what moves.
    const auto pausedApps = [&] {
        const auto held = QRegularExpression(QStringLiteral("\n(\\d+) apps? paused"))
                              .match(meter.trayIcon().toolTip());
        return held.hasMatch() ? held.captured(1).toInt() : 0;
    };
    ASSERT_TRUE(support::processEventsUntil([&] { return pausedApps() >= 1; }))
        << meter.trayIcon().toolTip().toStdString();
    const int whilePaused = pausedApps();
#endif
    window->actions().pauseOrResume(*table().groupAt(spinnerRow()));
    EXPECT_EQ(support::settlesAt(spinner, 'R'), 'R');
    ASSERT_TRUE(support::processEventsUntil([&] { return !nameCell().contains("Paused"); }));
#ifndef __APPLE__
    EXPECT_TRUE(support::processEventsUntil([&] { return pausedApps() == whilePaused - 1; }))
        << meter.trayIcon().toolTip().toStdString();
#endif
    window->showTab(Tab::details);
    ASSERT_TRUE(support::processEventsUntil([&] { return detailsState() != "Paused"; }));
    window->showTab(Tab::processes);

    // While the user decides, the model holds what waits for the answer.
    QTimer::singleShot(0, [&] {
        ASSERT_TRUE(model->pendingForceQuit());
        EXPECT_EQ(model->pendingForceQuit()->group.id, group.id);
    });
    support::answerNextMessageBox("Cancel", "force-quit-confirmation");
    EXPECT_FALSE(window->actions().forceQuit(group));
    EXPECT_EQ(model->pendingForceQuit(), std::nullopt);
    EXPECT_NE(support::stateOf(spinner), '?');
    support::answerNextMessageBox("Force Quit", "force-quit-confirmation");
    EXPECT_TRUE(window->actions().forceQuit(group));
    EXPECT_TRUE(support::processEventsUntil(
        [&] { return support::stateOf(spinner) == '?' || support::stateOf(spinner) == 'Z'; }));
}

TEST_F(MainWindowTest, TheProgramItselfIsNeverOfferedAnAction) {
    const QModelIndex self = [&] {
        for (const ProcessGroup& group : model->groups()) {
            if (group.isSelf) {
                return table().indexOfKey(group.id);
            }
        }
        return QModelIndex();
    }();
    ASSERT_TRUE(self.isValid());
    window->processesTab().view().setCurrentIndex(self);
    QMenu menu;
    window->actions().fill(menu, *table().groupAt(self));
    ASSERT_EQ(menu.actions().size(), 1);
    EXPECT_FALSE(menu.actions().front()->isEnabled());
    EXPECT_EQ(self.data(Qt::ToolTipRole).toString().left(19), "This is Loadwarden.");
}

TEST_F(MainWindowTest, ShortcutsReachTheSearchAndTheTabs) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    auto* search = window->findChild<QLineEdit*>();
    ASSERT_NE(search, nullptr);
    EXPECT_TRUE(search->hasFocus());
    QTest::keyClicks(search, "loadwarden");
    EXPECT_EQ(model->search(), "loadwarden");
    support::saveScreenshot(*window, "window-search");
    QTest::keyClick(window.get(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window->tabs().currentIndex(), 0);
}

TEST_F(MainWindowTest, TheMachinesLineFollowsTheModelWithoutResizingTheWindow) {
    const QSize size = window->size();
    QLabel& summary = window->processesTab().summary();
    const auto matches = [&] {
        return !model->processes().empty() &&
               summary.text().toStdString() ==
                   machineSummary(model->processes().size(), model->system());
    };
    ASSERT_TRUE(support::processEventsUntil([&] { return model->sampleCount() >= 3 && matches(); }));
    EXPECT_EQ(window->size(), size);
}

TEST_F(MainWindowTest, TheMeterAndTheSettingsFollowTheModel) {
    MenuBarMeter meter(*model);
    ASSERT_TRUE(support::processEventsUntil([&] { return !model->menuBar().text.empty(); }));
#ifndef __APPLE__ // a status item there, with no tooltip to read
    EXPECT_EQ(meter.trayIcon().toolTip().toStdString(), model->menuBar().text);
#endif
    QLabel plate;
    plate.setPixmap(MenuBarMeter::drawIcon({.text = "87% · encoder", .cpu = "87%", .busy = true})
                        .pixmap(64, 64));
    support::saveScreenshot(plate, "meter-busy");

    PrometheusSharing sharing(*model);
    SettingsWindow settings(*model, sharing);
    settings.show();
    support::saveScreenshot(settings, "settings-general");
    QCheckBox* meterBox = nullptr;
    for (QCheckBox* box : settings.findChildren<QCheckBox*>()) {
        meterBox = box->text() == "Show the meter in the menu bar" ? box : meterBox;
    }
    ASSERT_NE(meterBox, nullptr);
    meterBox->click();
    EXPECT_FALSE(model->settings().showMenuBar);
    EXPECT_FALSE(SettingsStore().load().value.showMenuBar); // saved at once
    settings.findChild<QTabWidget*>()->setCurrentIndex(1);
    support::saveScreenshot(settings, "settings-alerts");

    WelcomeDialog welcome(*model);
    welcome.show();
    support::saveScreenshot(welcome, "welcome");
    welcome.accept();
    EXPECT_TRUE(model->settings().onboardingDone);
}

TEST_F(MainWindowTest, AboutGivesTheVersion) {
    QAction* about = nullptr;
    for (QAction* menu : window->menuBar()->actions()) {
        about = about ? about : support::actionNamed(*menu->menu(), "About Loadwarden");
    }
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(about->menuRole(), QAction::AboutRole); // in the application menu on macOS
    QString text;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        text = box->text();
        support::saveScreenshot(*box, "about");
        box->accept();
    });
    about->trigger();
    EXPECT_TRUE(text.contains("Loadwarden " + qtText(programVersion))) << text.toStdString();
}

} // namespace
} // namespace loadwarden

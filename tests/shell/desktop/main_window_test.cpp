// The window on this machine's real processes, with its own settings and
// data folders, and a spinning process of the test's to act on.
#include "shell/desktop/main_window.h"
#include "shell/desktop/menu_bar_meter.h"
#include "shell/desktop/process_tree_model.h"
#include "shell/desktop/processes_tab.h"
#include "shell/desktop/settings_window.h"
#include "shell/desktop/welcome_dialog.h"
#include "tests/shell/desktop/desktop_support.h"
#include "tests/support/event_loop.h"
#include "tests/support/spinning_children.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <csignal>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

// A spinning process that is nobody's child here, so it stands as a row of
// its own rather than inside the test's group.
pid_t loneSpinner() {
    int ends[2];
    if (pipe(ends) != 0) {
        return -1;
    }
    if (fork() == 0) {
        const pid_t spinner = fork();
        if (spinner == 0) {
            while (true) {
            }
        }
        [[maybe_unused]] const auto written = write(ends[1], &spinner, sizeof spinner);
        _exit(0);
    }
    pid_t spinner = -1;
    [[maybe_unused]] const auto got = read(ends[0], &spinner, sizeof spinner);
    close(ends[0]);
    close(ends[1]);
    wait(nullptr);
    return spinner;
}

// Answers the next message box with the button of that text.
void answerNextMessageBox(const QString& button, const std::string& screenshot) {
    QTimer::singleShot(0, [button, screenshot] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        support::saveScreenshot(*box, screenshot);
        for (QAbstractButton* candidate : box->buttons()) {
            if (candidate->text() == button) {
                candidate->click();
                return;
            }
        }
        ADD_FAILURE() << "no button " << button.toStdString();
    });
}

QAction* actionNamed(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

class MainWindowTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureWidgetApplication(); }

    void SetUp() override {
        ASSERT_TRUE(home.isValid());
        qputenv("XDG_CONFIG_HOME", home.filePath("config").toUtf8());
        qputenv("XDG_DATA_HOME", home.filePath("data").toUtf8());
        spinner = loneSpinner();
        ASSERT_GT(spinner, 0);
        AppModel::Parts parts = AppModel::machineParts();
        parts.interval = 1.0;
        model = std::make_unique<AppModel>(std::move(parts));
        window = std::make_unique<MainWindow>(*model);
        window->show();
        model->start();
        ASSERT_TRUE(support::processEventsUntil([&] { return spinnerRow().isValid(); }));
    }

    void TearDown() override {
        window.reset();
        model.reset();
        kill(spinner, SIGKILL);
    }

    ProcessTreeModel& table() { return window->processesTab().tableModel(); }
    QModelIndex spinnerRow() { return table().indexOfKey("pid:" + std::to_string(spinner)); }

    QTemporaryDir home;
    pid_t spinner = -1;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTest, ActsOnAProcessFromItsMenuAndConfirmsAForceQuit) {
    QTreeView& view = window->processesTab().view();
    // Rates need two readings; the picture shows the spinner at work.
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return spinnerRow().siblingAtColumn(1).data().toString() != "0%"; }));
    view.setCurrentIndex(spinnerRow());
    support::saveScreenshot(*window, "window-processes");
    const ProcessGroup group = *table().groupAt(spinnerRow());

    QMenu menu;
    window->actions().fill(menu, group);
    QAction* pause = actionNamed(menu, QString::fromStdString("Pause " + group.name));
    ASSERT_NE(pause, nullptr);
    pause->trigger();
    EXPECT_EQ(support::settlesAt(spinner, 'T'), 'T');
    // The next refresh shows it paused, and the same command resumes it.
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return spinnerRow().isValid() && table().groupAt(spinnerRow())->isPaused(); }));
    window->actions().pauseOrResume(*table().groupAt(spinnerRow()));
    EXPECT_EQ(support::settlesAt(spinner, 'R'), 'R');

    answerNextMessageBox("Cancel", "force-quit-confirmation");
    EXPECT_FALSE(window->actions().forceQuit(group));
    EXPECT_NE(support::stateOf(spinner), '?');
    answerNextMessageBox("Force Quit", "force-quit-confirmation");
    EXPECT_TRUE(window->actions().forceQuit(group));
    EXPECT_TRUE(support::processEventsUntil([&] { return support::stateOf(spinner) == '?' ||
                                                         support::stateOf(spinner) == 'Z'; }));
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
    support::saveScreenshot(*window, "window-search");
    QTest::keyClick(window.get(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window->tabs().currentIndex(), 0);
}

TEST_F(MainWindowTest, TheMeterAndTheSettingsFollowTheModel) {
    MenuBarMeter meter(*model);
    ASSERT_TRUE(support::processEventsUntil([&] { return !model->menuBar().text.empty(); }));
    EXPECT_EQ(meter.trayIcon().toolTip().toStdString(), model->menuBar().text);
    QLabel plate;
    plate.setPixmap(MenuBarMeter::drawIcon({.text = "87% · encoder", .cpu = "87%", .busy = true})
                        .pixmap(64, 64));
    support::saveScreenshot(plate, "meter-busy");

    SettingsWindow settings(*model);
    settings.show();
    support::saveScreenshot(settings, "settings-general");
    QCheckBox* meterBox = nullptr;
    for (QCheckBox* box : settings.findChildren<QCheckBox*>()) {
        meterBox = box->text() == "Show the meter in the menu bar" ? box : meterBox;
    }
    ASSERT_NE(meterBox, nullptr);
    meterBox->click();
    EXPECT_FALSE(model->settings().showMenuBar);
    EXPECT_FALSE(SettingsStore().load().showMenuBar); // saved at once
    settings.findChild<QTabWidget*>()->setCurrentIndex(1);
    support::saveScreenshot(settings, "settings-alerts");

    WelcomeDialog welcome(*model);
    welcome.show();
    support::saveScreenshot(welcome, "welcome");
    welcome.accept();
    EXPECT_TRUE(model->settings().onboardingDone);
}

} // namespace
} // namespace loadwarden

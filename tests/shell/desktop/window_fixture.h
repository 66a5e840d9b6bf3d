#pragma once

// The window on this machine's real processes, with its own settings and
// data folders, and a spinning process of the test's to act on.

#include "shell/desktop/main_window.h"
#include "shell/desktop/process_tree_model.h"
#include "shell/desktop/processes_tab.h"
#include "tests/shell/desktop/desktop_support.h"
#include "tests/support/event_loop.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden::support {

// A spinning process that is nobody's child here, so it stands as a row of
// its own rather than inside the test's group.
inline pid_t loneSpinner() {
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
inline void answerNextMessageBox(const QString& button, const std::string& screenshot) {
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

inline QAction* actionNamed(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

class WindowTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureWidgetApplication(); }

    void SetUp() override {
        ASSERT_TRUE(home.isValid());
        prepareHome();
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

    // What a test puts in its folders before the program starts.
    virtual void prepareHome() {}

    ProcessTreeModel& table() { return window->processesTab().tableModel(); }
    QModelIndex spinnerRow() { return table().indexOfKey("pid:" + std::to_string(spinner)); }

    PrivateHome home;
    pid_t spinner = -1;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<MainWindow> window;
};

} // namespace loadwarden::support

#include "shell/desktop/main_window.h"

#include "shell/desktop/processes_tab.h"

#include <QEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>

namespace loadwarden {

MainWindow::MainWindow(AppModel& model, QWidget* parent)
    : QMainWindow(parent), model_(model), actions_(model, this), tabs_(new QTabWidget(this)),
      processes_(new ProcessesTab(model, actions_, tabs_)), problem_(new QLabel(this)) {
    setWindowTitle(QStringLiteral("Loadwarden"));
    resize(960, 640);
    tabs_->addTab(processes_, QStringLiteral("Processes"));
    tabs_->setDocumentMode(true);
    setCentralWidget(tabs_);

    problem_->setWordWrap(true);
    problem_->setAccessibleName(QStringLiteral("Problem"));
    statusBar()->addWidget(problem_, 1);
    connect(&model_, &AppModel::problemChanged, this,
            [this] { problem_->setText(model_.problem()); });

    buildMenus();
    connect(processes_, &ProcessesTab::selectionChanged, this, &MainWindow::updateCommands);
    updateCommands();
}

void MainWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    QAction* settings = file->addAction(QStringLiteral("Settings…"), this,
                                        &MainWindow::settingsRequested);
    settings->setShortcut(QKeySequence::Preferences);
    settings->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    QAction* quit = file->addAction(QStringLiteral("Quit Loadwarden"), this,
                                    &MainWindow::quitRequested);
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    for (int tab = 0; tab < tabs_->count(); ++tab) {
        QAction* show = view->addAction(tabs_->tabText(tab), this,
                                        [this, tab] { tabs_->setCurrentIndex(tab); });
        show->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + tab)));
    }
    QAction* find = view->addAction(QStringLiteral("Search"), processes_,
                                    &ProcessesTab::focusSearch);
    find->setShortcut(QKeySequence::Find);

    // The commands on the selected row, as the menu bar offers them.
    QMenu* process = menuBar()->addMenu(QStringLiteral("&Process"));
    const auto app = [this] { return processes_->selectedParentGroup(); };
    const auto single = [this] { return processes_->selectedGroup(); };
    quitApp_ = process->addAction(QStringLiteral("Quit Selected App"), this, [this, app] {
        if (const auto* group = app()) {
            actions_.quit(*group);
        }
    });
    forceQuitApp_ = process->addAction(QStringLiteral("Force Quit Selected App…"), this,
                                       [this, app] {
                                           if (const auto* group = app()) {
                                               actions_.forceQuit(*group);
                                           }
                                       });
    pauseApp_ = process->addAction(QStringLiteral("Pause or Resume Selected App"), this,
                                   [this, app] {
                                       if (const auto* group = app()) {
                                           actions_.pauseOrResume(*group);
                                       }
                                   });
    process->addSeparator();
    pauseProcess_ = process->addAction(QStringLiteral("Pause or Resume Selected Process"), this,
                                       [this, single] {
                                           if (const auto* group = single()) {
                                               actions_.pauseOrResume(*group);
                                           }
                                       });
    forceQuitProcess_ = process->addAction(QStringLiteral("Force Quit Selected Process…"), this,
                                           [this, single] {
                                               if (const auto* group = single()) {
                                                   actions_.forceQuit(*group);
                                               }
                                           });
    endProcess_ = process->addAction(QStringLiteral("End Selected Process"), this, [this, single] {
        if (const auto* group = single()) {
            actions_.quit(*group);
        }
    });
}

// Enabled only where the policy offers the action for the selected row.
void MainWindow::updateCommands() {
    const ProcessGroup* app = processes_->selectedParentGroup();
    const ProcessGroup* single = processes_->selectedGroup();
    const auto offered = [this](const ProcessGroup* group, ProcessAction action) {
        return group && actions_.offers(action, *group);
    };
    const auto pausable = [&](const ProcessGroup* group) {
        return offered(group, ProcessAction::pause) || offered(group, ProcessAction::resume);
    };
    quitApp_->setEnabled(offered(app, ProcessAction::quit));
    forceQuitApp_->setEnabled(offered(app, ProcessAction::forceQuit));
    pauseApp_->setEnabled(pausable(app));
    pauseProcess_->setEnabled(pausable(single));
    forceQuitProcess_->setEnabled(offered(single, ProcessAction::forceQuit));
    endProcess_->setEnabled(offered(single, ProcessAction::quit));
}

void MainWindow::bringForward() {
    showNormal();
    raise();
    activateWindow();
}

void MainWindow::followVisibility() {
    model_.setWindowVisible(isVisible() && !isMinimized());
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    followVisibility();
}

void MainWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    followVisibility();
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        followVisibility();
    }
}

} // namespace loadwarden

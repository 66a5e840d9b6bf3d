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
    // Each acts on the selected app (the group a member row belongs to) or
    // on the selected row alone.
    const auto command = [this, process](const char* title, bool wholeApp, auto act) {
        return process->addAction(QString::fromUtf8(title), this, [this, wholeApp, act] {
            const ProcessGroup* group = wholeApp ? processes_->selectedParentGroup()
                                                 : processes_->selectedGroup();
            if (group) {
                act(*group);
            }
        });
    };
    const auto quitOrEnd = [this](const ProcessGroup& group) { actions_.quit(group); };
    const auto forceQuit = [this](const ProcessGroup& group) { actions_.forceQuit(group); };
    const auto pauseOrResume = [this](const ProcessGroup& group) { actions_.pauseOrResume(group); };
    quitApp_ = command("Quit Selected App", true, quitOrEnd);
    forceQuitApp_ = command("Force Quit Selected App…", true, forceQuit);
    pauseApp_ = command("Pause or Resume Selected App", true, pauseOrResume);
    process->addSeparator();
    pauseProcess_ = command("Pause or Resume Selected Process", false, pauseOrResume);
    forceQuitProcess_ = command("Force Quit Selected Process…", false, forceQuit);
    endProcess_ = command("End Selected Process", false, quitOrEnd);
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

#include "shell/desktop/main_window.h"

#include "core/text/platform_wording.h"
#include "shell/desktop/about_box.h"
#include "shell/desktop/column_chooser.h"
#include "shell/desktop/command_palette.h"
#include "shell/desktop/delete_history.h"
#include "shell/desktop/details_tab.h"
#include "shell/desktop/history_tab.h"
#include "shell/desktop/performance_tab.h"
#include "shell/desktop/processes_tab.h"
#include "shell/desktop/qt_text.h"
#include "shell/desktop/startup_tab.h"
#include "shell/desktop/why_sheet.h"

#include <QEvent>
#include <QHeaderView>
#include <QTreeView>
#include <QTreeWidget>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>

namespace loadwarden {

MainWindow::MainWindow(AppModel& model, QWidget* parent)
    : QMainWindow(parent), model_(model), actions_(model, this), tabs_(new QTabWidget(this)),
      processes_(new ProcessesTab(model, actions_, tabs_)),
      performance_(new PerformanceTab(model, tabs_)), history_(new HistoryTab(model, tabs_)),
      startup_(new StartupTab(model, tabs_)), details_(new DetailsTab(model, tabs_)),
      problem_(new QLabel(this)), why_(new WhySheet(model, actions_, this)) {
    setWindowTitle(QStringLiteral("Loadwarden"));
    resize(960, 640);
    // In the order of allTabs, so a tab's place is its index.
    for (QWidget* page :
         std::initializer_list<QWidget*>{processes_, performance_, history_, startup_, details_}) {
        const Tab tab = allTabs[static_cast<std::size_t>(tabs_->count())];
        tabs_->addTab(page, qtText(title(tab)));
        page->setAccessibleName(qtText(title(tab)));
    }
    tabs_->setDocumentMode(true);
    setCentralWidget(tabs_);

    problem_->setWordWrap(true);
    problem_->setAccessibleName(QStringLiteral("Problem"));
    statusBar()->addWidget(problem_, 1);
    connect(&model_, &AppModel::problemChanged, this,
            [this] { problem_->setText(model_.problem()); });

    buildMenus();
    palette_ = new CommandPalette(model_, actions_, paletteCommands_, this);
    connect(palette_, &CommandPalette::tabRequested, this, &MainWindow::showTab);
    connect(palette_, &CommandPalette::groupRequested, this, [this](const std::string& id) {
        showTab(Tab::processes);
        processes_->showGroup(id);
    });
    connect(why_, &WhySheet::startupAppsRequested, this, [this] { showTab(Tab::startup); });
    // The model keeps the tab and the sheet shown.
    connect(tabs_, &QTabWidget::currentChanged, this,
            [this](int index) { model_.setTab(allTabs[static_cast<std::size_t>(index)]); });
    connect(&model_, &AppModel::tabChanged, this, [this] { showTab(model_.tab()); });
    for (QDialog* sheet : std::initializer_list<QDialog*>{why_, palette_}) {
        connect(sheet, &QDialog::finished, this, [this] { model_.setSheet(std::nullopt); });
    }
    connect(processes_, &ProcessesTab::selectionChanged, this, &MainWindow::updateCommands);
    updateCommands();
}

void MainWindow::showTab(Tab tab) {
    tabs_->setCurrentIndex(static_cast<int>(tab));
}

Tab MainWindow::currentTab() const {
    return allTabs[static_cast<std::size_t>(tabs_->currentIndex())];
}

std::vector<std::pair<std::string, QHeaderView*>> MainWindow::tableHeaders() {
    return {{"processes", processes_->view().header()},
            {"history", history_->table().header()},
            {"startup", startup_->table().header()},
            {"details", details_->table().header()}};
}

void MainWindow::saveLayout() {
    if (!memory_.save(*this)) {
        model_.setProblem(QStringLiteral("The window’s layout couldn’t be saved."));
    }
}

// The current tab's columns; the Performance tab has none.
void MainWindow::fillColumnsMenu(QMenu& menu) {
    menu.clear();
    const std::string_view current = rawValue(currentTab());
    for (const auto& [name, header] : tableHeaders()) {
        if (name == current) {
            fillColumnMenu(menu, *header);
        }
    }
    if (menu.isEmpty()) {
        menu.addAction(QStringLiteral("No Columns on This Tab"))->setEnabled(false);
    }
}

void MainWindow::showWhySheet() {
    model_.setSheet(Sheet::whySlow);
    why_->show();
    why_->raise();
    why_->activateWindow();
}

void MainWindow::showPalette() {
    model_.setSheet(Sheet::palette);
    palette_->openAfresh();
}

void MainWindow::buildMenus() {
    QMenu* file = fileMenu_ = menuBar()->addMenu(QStringLiteral("&File"));
    QAction* settings =
        file->addAction(QStringLiteral("Settings…"), this, &MainWindow::settingsRequested);
    settings->setShortcut(QKeySequence::Preferences);
    settings->setMenuRole(QAction::PreferencesRole);
    QAction* deleteHistory = file->addAction(QStringLiteral("Delete Usage History…"), this,
                                             [this] { confirmDeleteHistory(model_, this); });
    file->addSeparator();
    QAction* quit =
        file->addAction(QStringLiteral("Quit Loadwarden"), this, &MainWindow::quitRequested);
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    for (const Tab tab : allTabs) {
        const int index = static_cast<int>(tab);
        QAction* show = view->addAction(tabs_->tabText(index), this, [this, tab] { showTab(tab); });
        show->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + index)));
    }
    QAction* find = view->addAction(QStringLiteral("Search"), this, [this] {
        showTab(Tab::processes);
        processes_->focusSearch();
    });
    find->setShortcut(QKeySequence::Find);
    QMenu* columns = view->addMenu(QStringLiteral("Columns"));
    connect(columns, &QMenu::aboutToShow, this, [this, columns] { fillColumnsMenu(*columns); });
    view->addSeparator();
    QAction* why =
        view->addAction(qtText(onThisPlatform("Why Is My Mac Slow?", "Why Is My Computer Slow?")),
                        this, &MainWindow::showWhySheet);
    why->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_J));
    QAction* palette =
        view->addAction(QStringLiteral("Command Palette…"), this, &MainWindow::showPalette);
    palette->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_K));

    // The commands on the selected row, as the menu bar offers them.
    QMenu* process = menuBar()->addMenu(QStringLiteral("&Process"));
    // Each acts on the selected app (the group a member row belongs to) or
    // on the selected row alone.
    const auto command = [this, process](const char* title, bool wholeApp, auto act) {
        return process->addAction(QString::fromUtf8(title), this, [this, wholeApp, act] {
            const ProcessGroup* group =
                wholeApp ? processes_->selectedParentGroup() : processes_->selectedGroup();
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

    // On macOS About moves to the application menu.
    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    QAction* about =
        help->addAction(QStringLiteral("About Loadwarden"), this, [this] { showAboutBox(this); });
    about->setMenuRole(QAction::AboutRole);

    paletteCommands_ = {why,       settings,      deleteHistory,     quitApp_,   forceQuitApp_,
                        pauseApp_, pauseProcess_, forceQuitProcess_, endProcess_};
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

void MainWindow::closeEvent(QCloseEvent* event) {
    saveLayout();
    QMainWindow::closeEvent(event);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        followVisibility();
    }
}

} // namespace loadwarden

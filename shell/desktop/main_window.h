#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/process_actions.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QTabWidget;

namespace loadwarden {

class ProcessesTab;

// The window: the tabs, the menu commands on the selected row, the settings
// and the problem line. Its visibility sets the model's cadence.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(AppModel& model, QWidget* parent = nullptr);

    ProcessesTab& processesTab() { return *processes_; }
    ProcessActions& actions() { return actions_; }
    QTabWidget& tabs() { return *tabs_; }
    // Shown, raised and given the keyboard, from the meter or a second launch.
    void bringForward();

signals:
    void settingsRequested();
    void quitRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildMenus();
    void updateCommands();
    void followVisibility();

    AppModel& model_;
    ProcessActions actions_;
    QTabWidget* tabs_;
    ProcessesTab* processes_;
    QLabel* problem_;
    QAction* quitApp_ = nullptr;
    QAction* forceQuitApp_ = nullptr;
    QAction* pauseApp_ = nullptr;
    QAction* pauseProcess_ = nullptr;
    QAction* forceQuitProcess_ = nullptr;
    QAction* endProcess_ = nullptr;
};

} // namespace loadwarden

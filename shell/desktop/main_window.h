#pragma once

#include "app/model/app_model.h"
#include "core/model/window_state.h"
#include "shell/desktop/process_actions.h"
#include "shell/desktop/window_memory.h"

#include <QMainWindow>
#include <string>
#include <utility>
#include <vector>

class QAction;
class QHeaderView;
class QLabel;
class QMenu;
class QTabWidget;

namespace loadwarden {

class CommandPalette;
class DetailsTab;
class HistoryTab;
class PerformanceTab;
class ProcessesTab;
class StartupTab;
class WhySheet;

// The window: the five tabs, the menu commands on the selected row, the two
// sheets, the settings and the problem line. Its visibility sets the
// model's cadence; its layout is remembered as it closes.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(AppModel& model, QWidget* parent = nullptr);

    ProcessesTab& processesTab() { return *processes_; }
    PerformanceTab& performanceTab() { return *performance_; }
    HistoryTab& historyTab() { return *history_; }
    StartupTab& startupTab() { return *startup_; }
    DetailsTab& detailsTab() { return *details_; }
    ProcessActions& actions() { return actions_; }
    QTabWidget& tabs() { return *tabs_; }
    QMenu& fileMenu() { return *fileMenu_; }
    WhySheet& whySheet() { return *why_; }
    CommandPalette& palette() { return *palette_; }

    void showTab(Tab tab);
    Tab currentTab() const;
    // Each table's header, by the name its columns are remembered under.
    std::vector<std::pair<std::string, QHeaderView*>> tableHeaders();
    // The layout of the last run, before the window is first shown.
    void restoreLayout() { memory_.restore(*this); }
    void saveLayout();
    // Shown, raised and given the keyboard, from the meter or a second launch.
    void bringForward();
    void showWhySheet();
    void showPalette();

signals:
    void settingsRequested();
    void quitRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void fillColumnsMenu(QMenu& menu);
    void updateCommands();
    void followVisibility();

    AppModel& model_;
    WindowMemory memory_;
    ProcessActions actions_;
    QTabWidget* tabs_;
    ProcessesTab* processes_;
    PerformanceTab* performance_;
    HistoryTab* history_;
    StartupTab* startup_;
    DetailsTab* details_;
    QLabel* problem_;
    QMenu* fileMenu_ = nullptr;
    WhySheet* why_;
    CommandPalette* palette_ = nullptr;
    std::vector<QAction*> paletteCommands_;
    QAction* quitApp_ = nullptr;
    QAction* forceQuitApp_ = nullptr;
    QAction* pauseApp_ = nullptr;
    QAction* pauseProcess_ = nullptr;
    QAction* forceQuitProcess_ = nullptr;
    QAction* endProcess_ = nullptr;
};

} // namespace loadwarden

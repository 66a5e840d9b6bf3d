#pragma once

#include "app/alerts/notifier.h"
#include "app/codesign/code_info_cache.h"
#include "app/control/process_controller.h"
#include "app/foundation/clock.h"
#include "app/grouping/running_apps.h"
#include "app/history/history_file.h"
#include "app/model/settings_store.h"
#include "app/sampling/sample_source.h"
#include "app/startup/startup_catalog.h"
#include "core/diagnosis/alert_engine.h"
#include "core/diagnosis/diagnosis.h"
#include "core/foundation/calendar.h"
#include "core/grouping/process_column.h"
#include "core/history/usage_history.h"
#include "core/measurement/file_info.h"
#include "core/model/app_settings.h"
#include "core/model/graphs.h"
#include "core/model/menu_bar_state.h"
#include "core/model/window_state.h"
#include "core/startup/startup_rows.h"

#include <QObject>
#include <QString>
#include <QThreadPool>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace loadwarden {

// The one observable object behind the window, the menu bar meter and the
// command line's watch. It runs the refresh loop on the thread that made it
// (the main thread): the sampler works on its own thread and the model
// applies each result when it arrives, so the event loop never waits on the
// machine. While the window is hidden it samples less, and keeps what it
// sampled unpublished so that nobody redraws views nobody sees.
class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(
        bool windowVisible READ windowVisible WRITE setWindowVisible NOTIFY windowVisibleChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    Q_PROPERTY(int historyDays READ historyDays WRITE setHistoryDays NOTIFY historyDaysChanged)

public:
    // How the loop waits: calls `wake` after `delay` unless the model is gone.
    using Scheduler = std::function<void(Seconds delay, std::function<void()> wake)>;

    // What the model is made of; the program passes the machine's own, tests
    // their own scripted ones.
    struct Parts {
        std::unique_ptr<SampleSource> sampler;
        std::unique_ptr<ProcessController> controller;
        std::unique_ptr<Notifier> notifier;
        std::shared_ptr<StartupCatalog> startup;
        SettingsStore settings;
        HistoryFile historyFile;
        Clock clock;
        Calendar calendar;
        std::int32_t myPID = 0;
        Scheduler scheduler; // none: a timer on the event loop
        // This run's refresh interval in place of the user's setting, which stays as it is.
        std::optional<Seconds> interval;
    };

    // This program on this machine.
    static Parts machineParts();

    explicit AppModel(Parts parts, QObject* parent = nullptr);
    ~AppModel() override;

    // Starts the refresh loop; its first tick samples at once.
    void start();
    // The order of a clean quit: the loop stops, everything this copy paused
    // or limited runs again, and the history is saved.
    void prepareToQuit();

    // One tick's worth of sampler output made into published state, in the
    // loop's order. The loop calls it; benchmarks call it directly.
    void applySnapshot(const Snapshot& snapshot);

    bool windowVisible() const { return windowVisible_; }
    void setWindowVisible(bool visible);
    // Whether a view shows per-process network figures, which are then measured more often.
    void setNetworkShown(bool shown);

    const AppSettings& settings() const { return settings_; }
    // Saved at once, then applied: interval, alert rules; the shell follows
    // settingsChanged for the meter and the hot key.
    void setSettings(const AppSettings& settings);

    const MenuBarState& menuBar() const { return menuBar_; }
    QString problem() const { return problem_; }
    // What the user should know: a failed save, a refused action.
    void setProblem(const QString& problem);
    void clearProblem();

    const std::vector<LiveProcess>& processes() const { return processes_; }
    const std::vector<ProcessGroup>& groups() const { return groups_; }
    // The published group of that id; null when it is gone.
    const ProcessGroup* group(const std::string& id) const;
    const SystemSample& system() const { return system_; }
    const Graphs& graphs() const { return graphs_; }
    bool hasNetwork() const { return hasNetwork_; }
    const std::set<std::string>& notResponding() const { return notResponding_; }
    const std::vector<AppAlert>& recentAlerts() const { return recentAlerts_; }
    // How many alerts of each kind were raised since the model started.
    const std::map<AlertKind, std::uint64_t>& alertsRaised() const { return alertsRaised_; }
    // The recent alerts to show as banners now.
    std::vector<AppAlert> banners() const;

    const UsageHistory& history() const { return history_; }
    int historyDays() const { return historyDays_; }
    void setHistoryDays(int days);
    // What the App history tab lists for the chosen days, busiest first.
    std::vector<AppUsage> historySummary() const;
    // Empties the history and saves it at once.
    void deleteHistory();

    // Read in the background; startupItemsChanged tells when they are in.
    void refreshStartupItems();
    bool canChangeStartupItem(const StartupItem& item) const { return startup_->canChange(item); }
    // Switched in the background, then read again; a refusal becomes the problem.
    void setStartupItemEnabled(const StartupItem& item, bool enabled);
    const std::vector<StartupItem>& startupItems() const { return startupItems_; }
    bool startupLoaded() const { return startupLoaded_; }
    // The items with their impact from what their processes use now.
    std::vector<StartupRow> startupRows() const;

    // Who made the program at `path` and what `pid` has open, read in the
    // background into codeInfo() and fileInfo(); a program is read once.
    void requestCodeInfo(const std::string& path);
    void requestFileInfo(std::int32_t pid);
    const std::map<std::string, CodeInfo>& codeInfo() const { return codeInfo_; }
    // Absent for the processes the system tells nothing about.
    const std::map<std::int32_t, std::optional<FileInfo>>& fileInfo() const { return fileInfo_; }

    // What the views share about the window: the tab and sheet shown, the
    // process filter, the sorting, the groups opened, the selected group,
    // and the process the Details tab has selected.
    Tab tab() const { return tab_; }
    void setTab(Tab tab);
    std::optional<Sheet> sheet() const { return sheet_; }
    void setSheet(std::optional<Sheet> sheet);
    const std::optional<PendingForceQuit>& pendingForceQuit() const { return pendingForceQuit_; }
    void setPendingForceQuit(std::optional<PendingForceQuit> pending);
    const std::string& search() const { return search_; }
    void setSearch(std::string search);
    ProcessColumn sortColumn() const { return sortColumn_; }
    bool sortAscending() const { return sortAscending_; }
    void setSort(ProcessColumn column, bool ascending);
    const std::set<std::string>& expanded() const { return expanded_; }
    void setExpanded(const std::string& groupID, bool expanded);
    const std::optional<std::string>& selection() const { return selection_; }
    void setSelection(std::optional<std::string> groupID);
    std::optional<std::int32_t> detailSelection() const { return detailSelection_; }
    void setDetailSelection(std::optional<std::int32_t> pid);

    // The last tick's groups and system sample, published or not: what an
    // observer that is not a view reports.
    const std::vector<ProcessGroup>& latestGroups() const { return lastGrouped_; }
    const SystemSample& latestSystem() const;

    // What slows the computer down as of the last tick, with the leaks,
    // unresponsive apps and heavy startup items only a running model knows.
    SystemPicture picture() const;

    // How many entries each table holds whose keys come and go (apps, pids,
    // paths, alerts), by name: what a long run must keep bounded.
    std::map<std::string, std::size_t> tableSizes() const;

    ProcessController& controller() { return *controller_; }
    std::int32_t myPID() const { return myPID_; }
    int sampleCount() const { return sampleCount_; }

signals:
    void windowVisibleChanged();
    void settingsChanged();
    void menuBarChanged();
    void problemChanged();
    void processesChanged();
    void groupsChanged();
    void systemChanged();
    void graphsChanged();
    void hasNetworkChanged();
    void notRespondingChanged();
    void recentAlertsChanged();
    void historyChanged();
    void historyDaysChanged();
    void startupItemsChanged();
    void codeInfoChanged();
    void fileInfoChanged();
    void tabChanged();
    void sheetChanged();
    void pendingForceQuitChanged();
    void searchChanged();
    void sortChanged();
    void expandedChanged();
    void selectionChanged();
    void detailSelectionChanged();
    // After every tick, published or not.
    void ticked();
    // After a tick that read the processes, which covered `interval` seconds.
    void sampled(Seconds interval);

private:
    // One tick's worth of what the views show.
    struct LiveState {
        std::vector<LiveProcess> processes;
        std::vector<ProcessGroup> groups;
        SystemSample system;
        bool hasNetwork = false;
        std::set<std::string> notResponding;
    };

    SamplingPlan plan() const;
    void pass(std::uint64_t generation);
    void scheduleNextPass();
    void restartLoop();
    void applyLight(const SystemSample& sample);
    void publish(LiveState state);
    void updateMenuBar(const SystemSample& sample);
    void recordHistory(const Snapshot& snapshot);
    void saveHistory();
    void raiseAlerts(const std::set<std::string>& stuck, Date now);
    std::set<std::string> unresponsiveKeys() const;
    const std::vector<LiveProcess>& latestProcesses() const;
    void forgetFileInfoOfGoneProcesses();
    void forgetOpenedGroupsThatWent();
    // Runs `work` on the model's own pool; `then` gets its result back here.
    template <typename Work, typename Then>
    void inBackground(Work work, Then then);

    std::unique_ptr<SampleSource> sampler_;
    std::unique_ptr<ProcessController> controller_;
    std::unique_ptr<Notifier> notifier_;
    std::shared_ptr<StartupCatalog> startup_;
    std::shared_ptr<CodeInfoCache> codeCache_ = std::make_shared<CodeInfoCache>();
    SettingsStore settingsStore_;
    HistoryFile historyFile_;
    Clock clock_;
    Calendar calendar_;
    Scheduler scheduler_;
    const std::int32_t myPID_;
    const std::optional<Seconds> intervalOverride_;
    RunningApps runningApps_;
    AlertEngine alertEngine_;

    // The loop: a pass whose generation is stale was overtaken by a restart.
    std::uint64_t generation_ = 0;
    bool running_ = false;
    bool inFlight_ = false;
    std::optional<Date> lastSample_;
    Date lastHistorySave_ = 0.0;

    bool windowVisible_ = false;
    bool networkShown_ = true;
    std::optional<LiveState> unpublished_;
    Graphs liveGraphs_;
    int sampleCount_ = 0;
    std::vector<ProcessGroup> lastGrouped_;

    AppSettings settings_;
    MenuBarState menuBar_;
    QString problem_;
    std::vector<LiveProcess> processes_;
    std::vector<ProcessGroup> groups_;
    SystemSample system_;
    Graphs graphs_;
    bool hasNetwork_ = false;
    std::set<std::string> notResponding_;
    std::vector<AppAlert> recentAlerts_;
    std::map<AlertKind, std::uint64_t> alertsRaised_;
    UsageHistory history_;
    int historyDays_ = 1;
    std::vector<StartupItem> startupItems_;
    bool startupLoaded_ = false;
    std::map<std::string, CodeInfo> codeInfo_;
    std::map<std::int32_t, std::optional<FileInfo>> fileInfo_;
    // Asked for and not answered yet, so that a view asking on every repaint reads once.
    std::set<std::string> codeInfoAsked_;
    std::set<std::int32_t> fileInfoAsked_;
    Tab tab_ = Tab::processes;
    std::optional<Sheet> sheet_;
    std::optional<PendingForceQuit> pendingForceQuit_;
    std::string search_;
    ProcessColumn sortColumn_ = ProcessColumn::cpu;
    bool sortAscending_ = false;
    std::set<std::string> expanded_;
    std::optional<std::string> selection_;
    std::optional<std::int32_t> detailSelection_;
    QThreadPool background_; // last: waited for before the rest goes
};

} // namespace loadwarden

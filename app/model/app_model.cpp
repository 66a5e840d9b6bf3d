#include "app/model/app_model.h"

#include "app/details/open_files.h"
#include "app/foundation/local_calendar.h"
#include "app/model/unresponsive_probe.h"
#include "app/sampling/sampler.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr Seconds historySaveInterval = 300.0;
constexpr std::size_t keptAlerts = 50;

// The loop's own wait: a coarse timer, which lets the system batch wake-ups.
AppModel::Scheduler eventLoopScheduler(QObject* context) {
    return [context](Seconds delay, std::function<void()> wake) {
        QTimer::singleShot(static_cast<int>(delay * 1000.0), context, std::move(wake));
    };
}

double energyWatts(const std::vector<LiveProcess>& processes) {
    double watts = 0.0;
    for (const LiveProcess& process : processes) {
        watts += process.rates.energyWatts.value_or(0.0);
    }
    return watts;
}

// What the stores had to say at start, as one text.
std::string startNotes(const std::vector<std::optional<std::string>>& notes) {
    std::string text;
    for (const auto& note : notes) {
        if (note) {
            text += (text.empty() ? "" : " ") + *note;
        }
    }
    return text;
}

// True when the value changed.
template <typename Value, typename Signal>
bool assignIfChanged(AppModel* model, Value& field, Value value, Signal changed) {
    if (field == value) {
        return false;
    }
    field = std::move(value);
    emit(model->*changed)();
    return true;
}

} // namespace

AppModel::Parts AppModel::machineParts() {
    return Parts{
        .sampler = std::make_unique<Sampler>(),
        .controller = std::make_unique<ProcessController>(SharedLedger(DefaultsStore()),
                                                          systemApplications(), getpid()),
        .notifier = makeSystemNotifier(),
        .startup = makeStartupCatalog(),
        .settings = SettingsStore(),
        .historyFile = HistoryFile(),
        .clock = currentDate,
        .calendar = localCalendar(),
        .myPID = getpid(),
        .scheduler = {},
        .interval = std::nullopt,
    };
}

AppModel::AppModel(Parts parts, QObject* parent)
    : QObject(parent), sampler_(std::move(parts.sampler)), controller_(std::move(parts.controller)),
      notifier_(std::move(parts.notifier)), startup_(std::move(parts.startup)),
      settingsStore_(std::move(parts.settings)), historyFile_(std::move(parts.historyFile)),
      clock_(std::move(parts.clock)), calendar_(std::move(parts.calendar)),
      scheduler_(parts.scheduler ? std::move(parts.scheduler) : eventLoopScheduler(this)),
      myPID_(parts.myPID), intervalOverride_(parts.interval) {
    auto settings = settingsStore_.load();
    settings_ = settings.value;
    alertEngine_.settings = settings_.alerts;
    const Date now = clock_();
    auto history = historyFile_.load(now, calendar_);
    history_ = std::move(history.value);
    lastHistorySave_ = now;
    // Told once: the next problem takes its place.
    problem_ = QString::fromStdString(startNotes({settings.note, history.note}));
}

AppModel::~AppModel() {
    running_ = false;
    // Their threads finish first, so no result arrives for a model half gone.
    sampler_.reset();
    background_.waitForDone();
}

void AppModel::start() {
    running_ = true;
    restartLoop();
    refreshStartupItems();
}

void AppModel::prepareToQuit() {
    running_ = false;
    ++generation_;
    controller_->resumeEverything();
    saveHistory();
}

SamplingPlan AppModel::plan() const {
    return SamplingPlan{.windowVisible = windowVisible_,
                        .networkShown = networkShown_,
                        .interval = intervalOverride_.value_or(settings_.interval)};
}

// A pass now, or as soon as the one in flight has been applied.
void AppModel::restartLoop() {
    if (!running_) {
        return;
    }
    ++generation_;
    if (!inFlight_) {
        pass(generation_);
    }
}

void AppModel::pass(std::uint64_t generation) {
    if (!running_ || generation != generation_) {
        return;
    }
    const SamplingPlan current = plan();
    const Date now = clock_();
    inFlight_ = true;
    if (current.isFullSampleDue(lastSample_, now)) {
        sampler_->sample(current, [this, now](Snapshot snapshot) {
            auto result = std::make_shared<Snapshot>(std::move(snapshot));
            QMetaObject::invokeMethod(
                this,
                [this, now, result] {
                    inFlight_ = false;
                    lastSample_ = now;
                    applySnapshot(*result);
                    scheduleNextPass();
                },
                Qt::QueuedConnection);
        });
    } else {
        sampler_->quickSystemSample([this](SystemSample sample) {
            auto result = std::make_shared<SystemSample>(std::move(sample));
            QMetaObject::invokeMethod(
                this,
                [this, result] {
                    inFlight_ = false;
                    applyLight(*result);
                    scheduleNextPass();
                },
                Qt::QueuedConnection);
        });
    }
}

void AppModel::scheduleNextPass() {
    if (!running_) {
        return;
    }
    const std::uint64_t generation = generation_;
    scheduler_(plan().tickInterval(), [this, generation] { pass(generation); });
}

void AppModel::applySnapshot(const Snapshot& snapshot) {
    lastGrouped_ =
        ProcessGrouper::group(snapshot.processes, runningApps_.names(snapshot.processes), myPID_);
    liveGraphs_.record(snapshot.system, snapshot.date);
    liveGraphs_.energy.append(energyWatts(snapshot.processes));
    controller_->updateLimits(lastGrouped_);

    LiveState state{.processes = snapshot.processes,
                    .groups = lastGrouped_,
                    .system = snapshot.system,
                    .hasNetwork = snapshot.hasNetwork,
                    .notResponding = unresponsiveKeys()};
    const std::set<std::string> stuck = state.notResponding;
    if (windowVisible_) {
        publish(std::move(state));
    } else {
        unpublished_ = std::move(state);
    }
    updateMenuBar(snapshot.system);
    recordHistory(snapshot);
    if (clock_() - lastHistorySave_ > historySaveInterval) {
        saveHistory();
    }
    raiseAlerts(stuck, snapshot.date);
    ++sampleCount_;
    emit sampled(snapshot.interval);
    emit ticked();
}

void AppModel::applyLight(const SystemSample& sample) {
    liveGraphs_.recordLight(sample, clock_());
    if (unpublished_) {
        unpublished_->system = sample;
    } else {
        assignIfChanged(this, system_, sample, &AppModel::systemChanged);
    }
    updateMenuBar(sample);
    emit ticked();
}

void AppModel::publish(LiveState state) {
    if (assignIfChanged(this, processes_, std::move(state.processes),
                        &AppModel::processesChanged)) {
        forgetFileInfoOfGoneProcesses();
    }
    if (assignIfChanged(this, groups_, std::move(state.groups), &AppModel::groupsChanged)) {
        forgetOpenedGroupsThatWent();
    }
    assignIfChanged(this, system_, std::move(state.system), &AppModel::systemChanged);
    assignIfChanged(this, hasNetwork_, state.hasNetwork, &AppModel::hasNetworkChanged);
    assignIfChanged(this, notResponding_, std::move(state.notResponding),
                    &AppModel::notRespondingChanged);
    graphs_ = liveGraphs_;
    emit graphsChanged();
    unpublished_.reset();
}

// Over months a window opens groups by the thousand; those that went stay closed.
void AppModel::forgetOpenedGroupsThatWent() {
    if (std::erase_if(expanded_, [this](const std::string& id) { return group(id) == nullptr; }) >
        0) {
        emit expandedChanged();
    }
}

void AppModel::updateMenuBar(const SystemSample& sample) {
    const bool busy = !hotGroupKeys(lastGrouped_, settings_.alerts.hotPercent).empty();
    assignIfChanged(this, menuBar_, MenuBarState::compute(sample, lastGrouped_, busy),
                    &AppModel::menuBarChanged);
}

void AppModel::recordHistory(const Snapshot& snapshot) {
    history_.record(usageSamples(lastGrouped_, myPID_), snapshot.date, calendar_,
                    snapshot.interval);
    // The tab is redrawn only while somebody can see it.
    if (windowVisible_) {
        emit historyChanged();
    }
}

void AppModel::saveHistory() {
    static const QString failure = QStringLiteral("App history couldn’t be saved: ");
    const Date now = clock_();
    lastHistorySave_ = now;
    history_.prune(now, UsageHistory::keptDays, calendar_);
    if (const auto error = historyFile_.save(history_)) {
        setProblem(failure + QString::fromStdString(*error));
    } else if (problem_.startsWith(failure)) {
        clearProblem();
    }
}

// The apps' leaders are the ones the window server can judge.
std::set<std::string> AppModel::unresponsiveKeys() const {
    std::vector<std::int32_t> leaders;
    for (const ProcessGroup& group : lastGrouped_) {
        if (group.kind == GroupKind::app) {
            leaders.push_back(group.leader.record.pid);
        }
    }
    const std::set<std::int32_t> stuck = unresponsivePids(leaders);
    std::set<std::string> keys;
    for (const ProcessGroup& group : lastGrouped_) {
        if (group.kind == GroupKind::app && stuck.contains(group.leader.record.pid)) {
            keys.insert(group.id);
        }
    }
    return keys;
}

void AppModel::raiseAlerts(const std::set<std::string>& stuck, Date now) {
    std::vector<AlertEngine::App> apps;
    apps.reserve(lastGrouped_.size());
    for (const ProcessGroup& group : lastGrouped_) {
        apps.push_back({group.id, group.name, group.totalCPU(), group.totalMemory()});
    }
    const std::vector<AppAlert> raised = alertEngine_.update(apps, stuck, now);
    if (raised.empty()) {
        return;
    }
    for (const AppAlert& alert : raised) {
        notifier_->post(alert);
        ++alertsRaised_[alert.kind];
    }
    recentAlerts_.insert(recentAlerts_.end(), raised.begin(), raised.end());
    if (recentAlerts_.size() > keptAlerts) {
        recentAlerts_.erase(recentAlerts_.begin(),
                            recentAlerts_.end() - static_cast<std::ptrdiff_t>(keptAlerts));
    }
    emit recentAlertsChanged();
}

std::vector<AppAlert> AppModel::banners() const {
    return BannerRule::visible(recentAlerts_, hotGroupKeys(groups_, settings_.alerts.hotPercent),
                               clock_());
}

void AppModel::setWindowVisible(bool visible) {
    if (!assignIfChanged(this, windowVisible_, visible, &AppModel::windowVisibleChanged)) {
        return;
    }
    if (visible) {
        if (unpublished_) {
            publish(std::move(*unpublished_));
        }
        emit historyChanged();
        // The visible cadence starts now rather than after a hidden pause.
        restartLoop();
    }
}

void AppModel::setNetworkShown(bool shown) {
    networkShown_ = shown;
}

void AppModel::setSettings(const AppSettings& settings) {
    if (settings == settings_) {
        return;
    }
    const bool intervalChanged = settings.interval != settings_.interval;
    settings_ = settings;
    if (!settingsStore_.save(settings_)) {
        setProblem(QStringLiteral("Settings couldn’t be saved."));
    }
    alertEngine_.settings = settings_.alerts;
    emit settingsChanged();
    if (intervalChanged) {
        restartLoop();
    }
}

void AppModel::setProblem(const QString& problem) {
    assignIfChanged(this, problem_, problem, &AppModel::problemChanged);
}

void AppModel::clearProblem() {
    setProblem({});
}

void AppModel::setHistoryDays(int days) {
    if (days > 0 && days != historyDays_) {
        historyDays_ = days;
        emit historyDaysChanged();
    }
}

std::vector<AppUsage> AppModel::historySummary() const {
    return history_.summary(historyDays_, clock_(), calendar_);
}

void AppModel::deleteHistory() {
    history_ = UsageHistory{};
    saveHistory();
    emit historyChanged();
}

template <typename Work, typename Then>
void AppModel::inBackground(Work work, Then then) {
    background_.start([this, work = std::move(work), then = std::move(then)]() mutable {
        auto result = std::make_shared<decltype(work())>(work());
        QMetaObject::invokeMethod(
            this, [then = std::move(then), result]() mutable { then(std::move(*result)); },
            Qt::QueuedConnection);
    });
}

void AppModel::refreshStartupItems() {
    inBackground(
        [catalog = startup_, processes = latestProcesses()] { return catalog->items(processes); },
        [this](std::vector<StartupItem> items) {
            startupItems_ = std::move(items);
            startupLoaded_ = true;
            emit startupItemsChanged();
        });
}

void AppModel::setStartupItemEnabled(const StartupItem& item, bool enabled) {
    inBackground([catalog = startup_, item, enabled] { return catalog->setEnabled(item, enabled); },
                 [this](std::optional<std::string> refusal) {
                     if (refusal) {
                         setProblem(QString::fromStdString(*refusal));
                     }
                     refreshStartupItems();
                 });
}

void AppModel::requestCodeInfo(const std::string& path) {
    if (codeInfo_.contains(path) || !codeInfoAsked_.insert(path).second) {
        return;
    }
    inBackground([cache = codeCache_, path] { return cache->info(path); },
                 [this, path](CodeInfo info) {
                     codeInfoAsked_.erase(path);
                     codeInfo_.insert_or_assign(path, info);
                     emit codeInfoChanged();
                 });
}

// Read again on every request: open files come and go.
void AppModel::requestFileInfo(std::int32_t pid) {
    if (!fileInfoAsked_.insert(pid).second) {
        return;
    }
    inBackground([pid] { return openFiles(pid); },
                 [this, pid](std::optional<FileInfo> info) {
                     fileInfoAsked_.erase(pid);
                     fileInfo_.insert_or_assign(pid, std::move(info));
                     emit fileInfoChanged();
                 });
}

const ProcessGroup* AppModel::group(const std::string& id) const {
    const auto found = std::ranges::find(groups_, id, &ProcessGroup::id);
    return found == groups_.end() ? nullptr : &*found;
}

void AppModel::setTab(Tab tab) {
    assignIfChanged(this, tab_, tab, &AppModel::tabChanged);
}

void AppModel::setSheet(std::optional<Sheet> sheet) {
    assignIfChanged(this, sheet_, sheet, &AppModel::sheetChanged);
}

void AppModel::setPendingForceQuit(std::optional<PendingForceQuit> pending) {
    assignIfChanged(this, pendingForceQuit_, std::move(pending),
                    &AppModel::pendingForceQuitChanged);
}

void AppModel::setSearch(std::string search) {
    assignIfChanged(this, search_, std::move(search), &AppModel::searchChanged);
}

void AppModel::setSort(ProcessColumn column, bool ascending) {
    if (column != sortColumn_ || ascending != sortAscending_) {
        sortColumn_ = column;
        sortAscending_ = ascending;
        emit sortChanged();
    }
}

void AppModel::setExpanded(const std::string& groupID, bool expanded) {
    if (expanded ? expanded_.insert(groupID).second : expanded_.erase(groupID) > 0) {
        emit expandedChanged();
    }
}

void AppModel::setSelection(std::optional<std::string> groupID) {
    assignIfChanged(this, selection_, std::move(groupID), &AppModel::selectionChanged);
}

void AppModel::setDetailSelection(std::optional<std::int32_t> pid) {
    assignIfChanged(this, detailSelection_, pid, &AppModel::detailSelectionChanged);
}

// What gone processes had open is of no use to anyone.
void AppModel::forgetFileInfoOfGoneProcesses() {
    std::set<std::int32_t> alive;
    for (const LiveProcess& process : processes_) {
        alive.insert(process.record.pid);
    }
    std::erase_if(fileInfo_, [&alive](const auto& entry) { return !alive.contains(entry.first); });
}

const std::vector<LiveProcess>& AppModel::latestProcesses() const {
    return unpublished_ ? unpublished_->processes : processes_;
}

std::vector<StartupRow> AppModel::startupRows() const {
    return loadwarden::startupRows(startupItems_, latestProcesses());
}

std::map<std::string, std::size_t> AppModel::tableSizes() const {
    std::size_t historyEntries = 0;
    for (const auto& [day, apps] : history_.days) {
        historyEntries += apps.size();
    }
    std::size_t memoryPoints = 0;
    for (const auto& [key, points] : alertEngine_.memory) {
        memoryPoints += points.size();
    }
    return {
        {"history days", history_.days.size()},
        {"history entries", historyEntries},
        {"alerts: running hot", alertEngine_.hotSince.size() + alertEngine_.hotSum.size()},
        {"alerts: not responding", alertEngine_.stuckSince.size()},
        {"alerts: apps with memory points",
         alertEngine_.memory.size() + alertEngine_.lastMemoryPoint.size()},
        {"alerts: memory points", memoryPoints},
        {"alerts: last sent", alertEngine_.lastSent.size()},
        {"recent alerts", recentAlerts_.size()},
        {"code info", codeInfo_.size() + codeInfoAsked_.size()},
        {"file info", fileInfo_.size() + fileInfoAsked_.size()},
        {"opened groups", expanded_.size()},
        {"not responding", notResponding_.size()},
        {"limits", controller_->limits().size()},
    };
}

const SystemSample& AppModel::latestSystem() const {
    return unpublished_ ? unpublished_->system : system_;
}

SystemPicture AppModel::picture() const {
    const std::set<std::string>& stuck =
        unpublished_ ? unpublished_->notResponding : notResponding_;
    return Diagnosis::picture(latestSystem(), lastGrouped_, stuck, alertEngine_,
                              heavyStartupItems(startupRows()));
}

} // namespace loadwarden

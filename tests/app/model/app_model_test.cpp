#include "app/alerts/linux/freedesktop_notifier.h"
#include "app/control/applications.h"
#include "app/foundation/user_files.h"
#include "app/model/app_model.h"
#include "core/diagnosis/alert_text.h"
#include "tests/support/event_loop.h"
#include "tests/support/full_disk.h"
#include "tests/support/notification_server.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <deque>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr Date start = 1'800'000'000.0; // 2027-01-15 08:00:00 UTC

// Hands out what the test scripts: each full sample carries the processes
// and cores set at that moment, dated by the test's clock.
class ScriptedSampler final : public SampleSource {
public:
    explicit ScriptedSampler(const Date& clock) : clock_(clock) {}

    void sample(const SamplingPlan& plan, std::function<void(Snapshot)> done) override {
        plans.push_back(plan);
        Snapshot snapshot{.date = clock_,
                          .interval = last_ ? clock_ - *last_ : 0.0,
                          .processes = processes,
                          .system = system(),
                          .hasNetwork = false};
        last_ = clock_;
        done(std::move(snapshot));
    }

    void quickSystemSample(std::function<void(SystemSample)> done) override {
        ++quickSamples;
        done(system());
    }

    std::vector<LiveProcess> processes;
    std::vector<double> cores{0.25, 0.25};
    std::vector<SamplingPlan> plans;
    int quickSamples = 0;

private:
    SystemSample system() const {
        SystemSample sample;
        sample.coreUsage = cores;
        return sample;
    }

    const Date& clock_;
    std::optional<Date> last_;
};

// Three agents that the busy tool below runs, kept alive.
class ScriptedStartup final : public StartupCatalog {
public:
    std::vector<StartupItem> items(const std::vector<LiveProcess>&) override {
        std::vector<StartupItem> items;
        for (const std::string label : {"a", "b", "c"}) {
            items.push_back({.label = label,
                             .name = label,
                             .program = "/opt/tools/busy",
                             .keepAlive = true,
                             .disabled = switchedOff.contains(label)});
        }
        return items;
    }
    bool canChange(const StartupItem& item) const override { return item.label != "c"; }
    std::optional<std::string> setEnabled(const StartupItem& item, bool enabled) override {
        if (!canChange(item)) {
            return "only an administrator";
        }
        if (enabled) {
            switchedOff.erase(item.label);
        } else {
            switchedOff.insert(item.label);
        }
        return std::nullopt;
    }

    std::set<std::string> switchedOff;
};

LiveProcess busyProcess(std::int32_t pid, std::string name, double cpuPercent) {
    return {.record = {.pid = pid,
                       .ppid = 1,
                       .responsiblePID = pid,
                       .name = std::move(name),
                       .path = "/opt/tools/busy",
                       .isOwn = true,
                       .state = RunState::running},
            .rates = {.cpuPercent = cpuPercent}};
}

class AppModelTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureApplication(); }

    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        historyPath = folder.filePath("data/history.json").toStdString();
        make();
    }

    void make(std::optional<std::string> history = std::nullopt) {
        model.reset();
        auto scripted = std::make_unique<ScriptedSampler>(now);
        sampler = scripted.get();
        const DefaultsStore defaults(folder.filePath("defaults.conf").toStdString(),
                                     [this] { return now; });
        model = std::make_unique<AppModel>(AppModel::Parts{
            .sampler = std::move(scripted),
            .controller = std::make_unique<ProcessController>(SharedLedger(defaults),
                                                              systemApplications(), getpid()),
            .notifier = std::make_unique<FreedesktopNotifier>(), // on the test's own bus
            .startup = std::make_shared<ScriptedStartup>(),
            .settings = SettingsStore(defaults),
            .historyFile = HistoryFile(history.value_or(historyPath)),
            .clock = [this] { return now; },
            .calendar = Calendar::fixedOffset(0),
            .myPID = getpid(),
            .scheduler =
                [this](Seconds delay, std::function<void()> wake) {
                    delays.push_back(delay);
                    pendingDelay = delay;
                    pendingWake = std::move(wake);
                },
            .interval = std::nullopt});
    }

    // Results arrive through the event loop, as from the sampler's thread.
    static void deliver() { QCoreApplication::processEvents(); }

    void startModel() {
        model->start();
        deliver();
    }

    // Sleeps as long as the loop asked, then lets it run one pass.
    void nextPass() {
        ASSERT_TRUE(pendingWake) << "the loop is not waiting";
        now += pendingDelay;
        std::exchange(pendingWake, {})();
        deliver();
    }

    void passFor(Seconds span) {
        const Date end = now + span;
        while (now < end) {
            nextPass();
        }
    }

    QTemporaryDir folder;
    std::string historyPath;
    Date now = start;
    ScriptedSampler* sampler = nullptr;
    std::vector<Seconds> delays;
    Seconds pendingDelay = 0.0;
    std::function<void()> pendingWake;
    std::unique_ptr<AppModel> model;
};

TEST_F(AppModelTest, VisibleTicksFollowTheIntervalAndHiddenOnesSampleProcessesRarely) {
    model->setWindowVisible(true);
    startModel();
    nextPass();
    EXPECT_EQ(delays, (std::vector<Seconds>{2.0, 2.0}));
    EXPECT_EQ(sampler->plans.size(), 2u);

    AppSettings fast = model->settings();
    fast.interval = 0.5;
    model->setSettings(fast);
    deliver();
    EXPECT_EQ(delays.back(), 1.0); // never faster than a second

    fast.interval = 2.0;
    model->setSettings(fast);
    deliver();
    model->setWindowVisible(false);
    delays.clear();
    sampler->plans.clear();
    passFor(60.0);
    EXPECT_EQ(delays, std::vector<Seconds>(delays.size(), 5.0));
    // Processes every 15 seconds; the passes between read only the system figures.
    EXPECT_EQ(sampler->plans.size(), 4u);
    EXPECT_EQ(sampler->quickSamples, 9);
    for (const SamplingPlan& plan : sampler->plans) {
        EXPECT_FALSE(plan.windowVisible);
    }
}

TEST_F(AppModelTest, WhatIsSampledWhileHiddenIsShownTheMomentTheWindowAppears) {
    sampler->processes = {busyProcess(4100, "encoder", 20.0)};
    startModel();
    QSignalSpy groupsChanged(model.get(), &AppModel::groupsChanged);
    sampler->processes = {busyProcess(4100, "encoder", 20.0), busyProcess(4200, "indexer", 5.0)};
    sampler->cores = {0.5, 0.5, 0.5, 0.5};
    passFor(15.0);
    EXPECT_EQ(groupsChanged.count(), 0);
    EXPECT_TRUE(model->groups().empty());

    // The menu bar follows even while hidden, light ticks included; an
    // unchanged meter is not published again.
    sampler->cores = {1.0, 1.0, 1.0, 1.0};
    QSignalSpy meterChanged(model.get(), &AppModel::menuBarChanged);
    nextPass();
    nextPass();
    EXPECT_EQ(model->menuBar().text, "100%");
    EXPECT_EQ(meterChanged.count(), 1);

    const std::size_t passesBefore = sampler->plans.size();
    model->setWindowVisible(true);
    EXPECT_EQ(groupsChanged.count(), 1);
    EXPECT_EQ(model->groups().size(), 2u);
    EXPECT_EQ(model->system().coreUsage, sampler->cores); // the light tick's figures
    EXPECT_EQ(model->graphs().cores.size(), 4u);
    deliver();
    EXPECT_EQ(sampler->plans.size(), passesBefore + 1); // and a visible tick at once
}

TEST_F(AppModelTest, HeavyStartupItemsReachTheExplainerAndSwitchInTheBackground) {
    model->setWindowVisible(true);
    sampler->processes = {busyProcess(4100, "busy", 30.0)};
    startModel();
    nextPass();
    ASSERT_TRUE(support::processEventsUntil([&] { return model->startupLoaded(); }));
    EXPECT_EQ(model->picture().heavyStartupItems, 3);

    model->setStartupItemEnabled(model->startupItems()[0], false);
    ASSERT_TRUE(support::processEventsUntil([&] { return model->startupItems()[0].disabled; }));
    EXPECT_EQ(model->picture().heavyStartupItems, 2);
    model->setStartupItemEnabled(model->startupItems()[2], false);
    ASSERT_TRUE(support::processEventsUntil([&] { return !model->problem().isEmpty(); }));
    EXPECT_EQ(model->problem(), "only an administrator");
}

TEST_F(AppModelTest, DetailsAreReadInTheBackground) {
    model->requestFileInfo(getpid());
    model->requestFileInfo(2147483647);
    model->requestCodeInfo("/opt/nowhere/tool");
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return model->fileInfo().size() == 2 && model->codeInfo().size() == 1; }));
    ASSERT_TRUE(model->fileInfo().at(getpid()));
    EXPECT_GE(model->fileInfo().at(getpid())->files, 3);
    EXPECT_FALSE(model->fileInfo().at(2147483647)); // no such process: nothing guessed
    EXPECT_EQ(model->codeInfo().at("/opt/nowhere/tool"), CodeInfo{});
}

TEST_F(AppModelTest, HistoryIsSavedAtMostEveryFiveMinutesAndAtQuit) {
    model->setWindowVisible(true);
    sampler->processes = {busyProcess(4100, "encoder", 100.0)};
    startModel();
    passFor(300.0);
    EXPECT_FALSE(std::filesystem::exists(historyPath));
    passFor(4.0);
    ASSERT_TRUE(std::filesystem::exists(historyPath));
    std::filesystem::remove(historyPath);
    passFor(290.0);
    EXPECT_FALSE(std::filesystem::exists(historyPath));

    model->prepareToQuit();
    ASSERT_TRUE(std::filesystem::exists(historyPath));
    make();
    const auto summary = model->historySummary();
    ASSERT_EQ(summary.size(), 1u);
    EXPECT_EQ(summary[0].key, "exe:/opt/tools/busy");
    EXPECT_NEAR(summary[0].totals.cpuSeconds, 594.0, 1e-6); // every tick but the first
}

TEST_F(AppModelTest, AFailedSaveBecomesTheProblemAndKeepsTheHistory) {
    make("/dev/null/history.json");
    model->setWindowVisible(true);
    sampler->processes = {busyProcess(4100, "encoder", 100.0)};
    startModel();
    passFor(302.0);
    EXPECT_TRUE(model->problem().startsWith("App history couldn’t be saved: "))
        << model->problem().toStdString();
    ASSERT_EQ(model->historySummary().size(), 1u);
    EXPECT_NEAR(model->historySummary()[0].totals.cpuSeconds, 302.0, 1e-6);
}

TEST_F(AppModelTest, AFullDiskLeavesTheSavedHistoryWholeAndTheNextSaveWithRoomSucceeds) {
    model->setWindowVisible(true);
    sampler->processes = {busyProcess(4100, "encoder", 100.0)};
    startModel();
    passFor(302.0);
    const auto saved = fileText(historyPath);
    ASSERT_TRUE(saved);
    {
        const support::FullDisk full(64);
        passFor(302.0);
        EXPECT_TRUE(model->problem().startsWith("App history couldn’t be saved: "))
            << model->problem().toStdString();
        EXPECT_EQ(fileText(historyPath), saved);
        EXPECT_EQ(filesIn(std::filesystem::path(historyPath).parent_path(), "").size(), 1u);
    }
    passFor(302.0);
    EXPECT_EQ(model->problem(), "");
    EXPECT_EQ(decodeHistory(fileText(historyPath).value_or("")), model->history());
}

TEST_F(AppModelTest, AStartKeepsAsideWhatItCannotReadAndBeginsFromTheDefaults) {
    const DefaultsStore defaults(folder.filePath("defaults.conf").toStdString());
    ASSERT_TRUE(defaults.write("settings", R"({"interval":5.0})"));
    ASSERT_TRUE(defaults.write("pausedLedger", R"({"entries":[{"pid":4100,"sta)"));
    std::filesystem::create_directories(std::filesystem::path(historyPath).parent_path());
    std::ofstream(historyPath) << R"({"days":{},"version":2})";

    // As the program starts: the ledger's orphans first, then the model.
    SharedLedger(DefaultsStore(defaults.path(), [this] { return now; })).releaseOrphans();
    make();
    EXPECT_EQ(model->settings(), AppSettings{});
    EXPECT_EQ(model->history(), UsageHistory{});
    EXPECT_EQ(defaults.read("settings.unreadable-2027-01-15T080000Z"), R"({"interval":5.0})");
    EXPECT_EQ(defaults.read("settings"), std::nullopt);
    EXPECT_EQ(defaults.read("pausedLedger.unreadable-2027-01-15T080000Z"),
              R"({"entries":[{"pid":4100,"sta)");
    const std::string keptHistory =
        folder.filePath("data/history-2027-01-15T080000Z.json").toStdString();
    EXPECT_EQ(fileText(keptHistory), R"({"days":{},"version":2})");
    EXPECT_EQ(model->problem().toStdString(),
              "Settings couldn’t be read, so they are back to their defaults; the unreadable "
              "value is kept as settings.unreadable-2027-01-15T080000Z in " +
                  defaults.path() +
                  ". App history couldn’t be read, so it starts empty; the unreadable file is "
                  "kept as " +
                  keptHistory + ".");

    // Told once: the next start finds nothing it cannot read.
    make();
    EXPECT_EQ(model->problem(), "");
}

TEST_F(AppModelTest, SettingsAreSavedWholeAtOnceAndRuleTheAlertsPostedOncePerCooldown) {
    support::NotificationServer server;
    ASSERT_TRUE(server.isRegistered());
    AppSettings settings = model->settings();
    settings.alerts.hotMinutes = 1;
    settings.alerts.repeatMinutes = 2;
    model->setSettings(settings);
    EXPECT_EQ(
        SettingsStore(DefaultsStore(folder.filePath("defaults.conf").toStdString())).load().value,
        settings);

    model->setWindowVisible(true);
    sampler->processes = {busyProcess(4100, "encoder", 90.0), busyProcess(4200, "idle", 1.0)};
    startModel();
    passFor(57.0);
    EXPECT_TRUE(model->recentAlerts().empty());
    passFor(301.0);
    // Hot from the first tick: alerted at one minute, then once per two-minute cooldown.
    const auto& alerts = model->recentAlerts();
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_EQ(alerts[0].kind, AlertKind::runningHot);
    EXPECT_EQ(alerts[0].date, start + 60.0);
    EXPECT_EQ(alerts[1].date, start + 180.0);
    EXPECT_TRUE(model->menuBar().busy);

    ASSERT_TRUE(support::processEventsUntil([&] { return server.received.size() == 3; }));
    EXPECT_EQ(server.received[0].summary, "encoder is running hot");
    EXPECT_EQ(server.received[2].body.toStdString(), AlertText::notificationBody(alerts[2]));
}

// A day of processes coming and going: forty at a time, ten of them replaced
// every minute by new pids with new names, run by a dozen programs; some run
// hot, some grow, and the views ask about some of them. Whatever is keyed by
// what comes and goes stays as large as it was once the longest window the
// model keeps (three hours of memory points) had filled.
TEST_F(AppModelTest, ADayOfProcessesComingAndGoingLeavesTheTablesNoLarger) {
    constexpr int alive = 40;
    constexpr int replacedEachMinute = 10;
    constexpr int programs = 12;
    std::int32_t nextPID = 10'000;
    std::deque<LiveProcess> running;
    const auto startOne = [&](int minute) {
        const std::int32_t pid = nextPID++;
        LiveProcess process =
            busyProcess(pid, "job-" + std::to_string(minute) + "-" + std::to_string(pid),
                        pid % 7 == 0 ? 150.0 : 2.0);
        process.record.path = "/opt/tools/program-" + std::to_string(pid % programs);
        process.record.memoryBytes = 50'000'000;
        running.push_back(std::move(process));
    };
    for (int each = 0; each < alive; ++each) {
        startOne(0);
    }
    // Hot for a minute is enough to be told, so the hot ones, living four
    // minutes, are: alerts and their cooldowns come and go too.
    AppSettings quickToWarn = model->settings();
    quickToWarn.alerts.hotMinutes = 1;
    model->setSettings(quickToWarn);
    model->setWindowVisible(true);
    sampler->processes.assign(running.begin(), running.end());
    startModel();

    std::map<std::string, std::size_t> settled;
    for (int minute = 1; minute <= 24 * 60; ++minute) {
        for (int each = 0; each < replacedEachMinute; ++each) {
            running.pop_front();
            startOne(minute);
        }
        for (LiveProcess& process : running) {
            process.record.memoryBytes += 1'000'000; // a slow leak in every one
        }
        sampler->processes.assign(running.begin(), running.end());
        // What a view asks for: who made the newest program, what the newest
        // process has open; a group opened and the newest one selected.
        const LiveProcess& newest = running.back();
        model->requestCodeInfo(newest.record.path);
        model->requestFileInfo(newest.record.pid);
        passFor(60.0);
        if (!model->groups().empty()) {
            model->setExpanded(model->groups().back().id, true);
        }
        model->setDetailSelection(newest.record.pid);
        if (minute == 4 * 60) {
            settled = model->tableSizes();
        }
    }
    ASSERT_TRUE(support::processEventsUntil(
        [this] { return model->tableSizes().at("file info") == model->fileInfo().size(); }));

    const auto end = model->tableSizes();
    for (const auto& [table, size] : end) {
        if (table.starts_with("history")) {
            continue; // one entry per program and day, kept for 35 days
        }
        EXPECT_LE(size, settled.at(table) + settled.at(table) / 20 + 1) << table;
    }
    EXPECT_LE(end.at("history entries"), end.at("history days") * programs);
    EXPECT_GT(end.at("alerts: last sent"), 0u) << "the hot ones were told about";
}

} // namespace
} // namespace loadwarden

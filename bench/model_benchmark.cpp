// One refresh of the application model as the loop applies it: grouping,
// graphs, the ledger, publishing, the meter, history (with its save every five
// minutes) and alerts.
#include "app/control/applications.h"
#include "app/model/app_model.h"
#include "bench/busy_desktop.h"

#include <QTemporaryDir>
#include <unistd.h>

namespace loadwarden {
namespace {

// The benchmark hands the model its snapshots itself.
class IdleSampler final : public SampleSource {
public:
    void sample(const SamplingPlan&, std::function<void(Snapshot)>) override {}
    void quickSystemSample(std::function<void(SystemSample)>) override {}
};

class SilentNotifier final : public Notifier {
public:
    void post(const AppAlert&) override {}
};

void ModelTick(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    QTemporaryDir folder;
    Date now = 1'800'000'000.0;
    const DefaultsStore defaults(folder.filePath("defaults.conf").toStdString());
    AppModel model(
        AppModel::Parts{.sampler = std::make_unique<IdleSampler>(),
                        .controller = std::make_unique<ProcessController>(
                            SharedLedger(defaults), systemApplications(), getpid()),
                        .notifier = std::make_unique<SilentNotifier>(),
                        .startup = makeStartupCatalog(),
                        .settings = SettingsStore(defaults),
                        .historyFile = HistoryFile(folder.filePath("history.json").toStdString()),
                        .clock = [&now] { return now; },
                        .calendar = Calendar::fixedOffset(0),
                        .myPID = bench::selfPID,
                        .scheduler = [](Seconds, std::function<void()>) {},
                        .interval = std::nullopt});
    model.setWindowVisible(true);
    Snapshot snapshot{.date = now,
                      .interval = 2.0,
                      .processes = bench::machine(count).processes,
                      .system = {},
                      .hasNetwork = true};
    snapshot.system.coreUsage.assign(8, 0.3);
    for (auto _ : state) {
        now += 2.0;
        snapshot.date = now;
        model.applySnapshot(snapshot);
    }
    bench::perThousandProcesses(state, count);
}
BENCHMARK(ModelTick)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace loadwarden

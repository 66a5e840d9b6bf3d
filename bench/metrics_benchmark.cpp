// What a scrape costs: the tick's counting, then writing every family out.
#include "bench/busy_desktop.h"
#include "core/diagnosis/diagnosis.h"
#include "core/metrics/exposition.h"
#include "core/metrics/machine_metrics.h"

namespace loadwarden {
namespace {

using bench::machine;
using bench::Machine;
using bench::selfPID;

constexpr std::size_t shownApps = UsageCounters::defaultShownApps;

void CountATick(benchmark::State& state) {
    const Machine input = machine(static_cast<int>(state.range(0)));
    const auto groups = ProcessGrouper::group(input.processes, input.appNames, selfPID);
    UsageCounters counters;
    for (auto _ : state) {
        counters.record(groups, {}, 2.0, shownApps);
    }
    state.SetLabel(std::to_string(groups.size()) + " groups");
}
BENCHMARK(CountATick)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);

// Each format in turn; the bytes of one answer are its counter.
void ServeAScrape(benchmark::State& state) {
    const Machine input = machine(static_cast<int>(state.range(0)));
    const auto format = static_cast<ExpositionFormat>(state.range(1));
    const auto groups = ProcessGrouper::group(input.processes, input.appNames, selfPID);
    SystemSample system;
    system.coreUsage.assign(8, 0.5);
    UsageCounters counters;
    counters.record(groups, system, 2.0, shownApps);
    const std::map<std::string, double> limits;
    const std::map<AlertKind, std::uint64_t> alerts;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const SystemPicture picture = Diagnosis::picture(system, groups, {}, AlertEngine{}, 0);
        const std::vector<Cause> causes = Explainer::explain(picture, 20);
        const std::string answer =
            expose(machineMetrics({system, groups, counters, limits, causes, alerts, selfPID}),
                   format);
        bytes = answer.size();
        benchmark::DoNotOptimize(answer.data());
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(ServeAScrape)
    ->Args({1000, static_cast<int>(ExpositionFormat::text)})
    ->Args({5000, static_cast<int>(ExpositionFormat::text)})
    ->Args({5000, static_cast<int>(ExpositionFormat::openMetrics)})
    ->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace loadwarden

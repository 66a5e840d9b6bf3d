// The Performance tab offscreen with every graph a minute full: one repaint
// of the whole tab, and one tick (new figures, then the repaint).
#include "shell/desktop/performance_tab.h"
#include "tests/support/widgets.h"

#include <QApplication>
#include <QImage>
#include <benchmark/benchmark.h>
#include <cmath>

namespace loadwarden {
namespace {

// Half the cores fast, half frugal, every figure moving.
SystemSample sampleAt(int tick, int cores) {
    SystemSample sample;
    for (int core = 0; core < cores; ++core) {
        sample.coreUsage.push_back(0.5 + 0.45 * std::sin(tick * 0.25 + core));
        sample.coreKinds.push_back(core < cores / 2 ? CoreKind::performance : CoreKind::efficiency);
    }
    sample.memory.total = 16'000'000'000;
    sample.memory.app = 6'000'000'000 + static_cast<std::uint64_t>(tick % 10) * 100'000'000;
    sample.memory.swapTotal = 4'000'000'000;
    sample.memory.swapUsed = 1'000'000'000;
    sample.gpu = 0.3 + 0.2 * std::sin(tick * 0.1);
    sample.diskReadPerSecond = 2e6 * (1 + std::sin(tick * 0.4));
    sample.diskWritePerSecond = 5e5 * (1 + std::cos(tick * 0.2));
    sample.networkInPerSecond = 8e5 * (1 + std::sin(tick * 0.1));
    sample.networkOutPerSecond = 1e5 * (1 + std::cos(tick * 0.3));
    sample.battery = BatteryInfo{.percent = 0.8, .onBattery = true};
    return sample;
}

// The tab on a model of its own that never ticks.
struct Bench {
    explicit Bench(int cores) {
        for (int tick = 0; tick < static_cast<int>(Series::graphCapacity); ++tick) {
            sample = sampleAt(tick, cores);
            graphs.record(sample, tick);
            graphs.energy.append(8.0 + 4.0 * std::sin(tick * 0.2));
        }
        // Tall enough that every graph is in view and painted.
        tab.resize(960, 1400);
        tab.show();
        tab.showFigures(graphs, sample, true);
        QApplication::processEvents();
    }

    support::PrivateHome home;
    AppModel model{AppModel::machineParts()};
    PerformanceTab tab{model};
    Graphs graphs;
    SystemSample sample;
    QImage canvas{960, 1400, QImage::Format_ARGB32_Premultiplied};
};

void PerformanceTabRepaint(benchmark::State& state) {
    support::ensureWidgetApplication();
    Bench bench(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        bench.tab.render(&bench.canvas);
    }
}
BENCHMARK(PerformanceTabRepaint)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond);

void PerformanceTabTick(benchmark::State& state) {
    support::ensureWidgetApplication();
    const int cores = static_cast<int>(state.range(0));
    Bench bench(cores);
    int tick = static_cast<int>(Series::graphCapacity);
    for (auto _ : state) {
        bench.sample = sampleAt(++tick, cores);
        bench.graphs.record(bench.sample, 0.0);
        bench.graphs.energy.append(8.0);
        bench.tab.showFigures(bench.graphs, bench.sample, true);
        bench.tab.render(&bench.canvas);
    }
}
BENCHMARK(PerformanceTabTick)->Arg(16)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace loadwarden

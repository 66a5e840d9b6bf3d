// One refresh applied to the Processes tab, offscreen: the tree model's
// row-by-row update and the view's layout of what changed.
#include "bench/busy_desktop.h"
#include "shell/desktop/process_tree_model.h"
#include "tests/support/widgets.h"

#include <QApplication>
#include <QTreeView>

namespace loadwarden {
namespace {

void ProcessesTabTick(benchmark::State& state) {
    support::ensureWidgetApplication();
    const int count = static_cast<int>(state.range(0));
    const auto machine = bench::machine(count);
    // Two refreshes that differ in every figure, taken in turn.
    std::array<std::vector<ProcessGroup>, 2> ticks;
    for (std::size_t tick = 0; tick < ticks.size(); ++tick) {
        auto processes = machine.processes;
        for (LiveProcess& process : processes) {
            process.rates.cpuPercent += static_cast<double>(tick) * 3.0;
        }
        ticks[tick] = ProcessGrouper::group(processes, machine.appNames, bench::selfPID);
    }
    ProcessTreeModel model;
    QTreeView view;
    view.setModel(&model);
    view.setUniformRowHeights(true);
    view.setSortingEnabled(true);
    view.sortByColumn(1, Qt::DescendingOrder);
    view.resize(960, 640);
    view.show();
    model.update(ticks[0], {});
    view.expandAll();
    std::size_t tick = 0;
    for (auto _ : state) {
        model.update(ticks[++tick % ticks.size()], {});
        view.doItemsLayout();
        QApplication::processEvents();
    }
    bench::perThousandProcesses(state, count);
}
BENCHMARK(ProcessesTabTick)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace loadwarden

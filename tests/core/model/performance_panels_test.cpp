#include "core/model/performance_panels.h"

#include <gtest/gtest.h>

namespace loadwarden {

namespace {

enum Panel { cpu, memory, swap, gpu, diskRead, diskWrite, netIn, netOut, battery, energy };

SystemSample sampleOf(std::vector<double> cores, std::vector<CoreKind> kinds = {}) {
    SystemSample sample;
    sample.coreUsage = std::move(cores);
    sample.coreKinds = std::move(kinds);
    sample.memory.total = 16'000'000'000;
    sample.memory.app = 5'200'000'000;
    return sample;
}

std::vector<std::string> titlesOf(const CoreSection& section) {
    std::vector<std::string> titles;
    for (const GraphPanel& core : section.cores) {
        titles.push_back(core.title);
    }
    return titles;
}

} // namespace

TEST(PerformancePanelsTest, EmptySeriesHaveFiguresButNoLineYet) {
    Graphs graphs;
    const SystemSample sample = sampleOf({0.25, 0.75});
    PerformancePanels panels = performancePanels(graphs, sample, false);
    ASSERT_EQ(panels.system.size(), PerformancePanels::systemCount);
    // Before the first tick the figures are there, the lines not yet.
    EXPECT_EQ(panels.system[cpu].figure, "50%");
    EXPECT_TRUE(panels.system[cpu].values.empty());
    EXPECT_TRUE(panels.cores.empty());

    graphs.record(sample, 0.0);
    panels = performancePanels(graphs, sample, false);
    EXPECT_EQ(panels.system[cpu].values, std::vector<double>{0.5});
    ASSERT_EQ(panels.cores.size(), 1u);
    EXPECT_EQ(panels.cores[0].cores[1].values, std::vector<double>{0.75});
    EXPECT_EQ(panels.cores[0].cores[1].capacity, Series::graphCapacity);
}

TEST(PerformancePanelsTest, AFigureTheSystemDoesNotGiveIsADashWithoutALine) {
    Graphs graphs;
    SystemSample sample = sampleOf({0.5});
    graphs.record(sample, 0.0);
    graphs.energy.append(0.0);
    PerformancePanels panels = performancePanels(graphs, sample, false);
    // The series hold zeros for these; the panels must not draw them.
    for (const Panel missing : {gpu, battery, energy}) {
        EXPECT_EQ(panels.system[missing].figure, std::nullopt) << panels.system[missing].title;
        EXPECT_TRUE(panels.system[missing].values.empty()) << panels.system[missing].title;
    }
    EXPECT_EQ(panels.system[memory].figure, "5.2 GB of 16 GB used · pressure normal");
    EXPECT_EQ(panels.system[swap].figure, "0 bytes used");

    sample.gpu = 0.25;
    sample.battery = BatteryInfo{.percent = 0.8, .charging = true};
    sample.memory.pressure = MemoryPressure::warning;
    sample.memory.swapUsed = 1'500'000'000;
    sample.memory.swapTotal = 4'000'000'000;
    graphs.record(sample, 0.0);
    graphs.energy.append(4.5);
    panels = performancePanels(graphs, sample, true);
    EXPECT_EQ(panels.system[gpu].figure, "25%");
    EXPECT_EQ(panels.system[gpu].values, (std::vector<double>{0.0, 0.25}));
    EXPECT_EQ(panels.system[battery].figure, "80% · Charging");
    EXPECT_EQ(panels.system[energy].figure, "4.5 W");
    EXPECT_EQ(panels.system[energy].scaleLabel(1.0), "5 W");
    EXPECT_EQ(panels.system[memory].figure, "5.2 GB of 16 GB used · pressure high");
    EXPECT_EQ(panels.system[swap].figure, "1.5 GB of 4 GB used");
    EXPECT_EQ(panels.system[swap].top, 4e9);
}

TEST(PerformancePanelsTest, PairedRatesShareARoundTopAndIdleOnesKeepALeastOne) {
    Graphs graphs;
    SystemSample sample = sampleOf({0.1});
    sample.diskReadPerSecond = 3'400'000.0;
    sample.diskWritePerSecond = 120'000.0;
    graphs.record(sample, 0.0);
    const PerformancePanels panels = performancePanels(graphs, sample, false);
    EXPECT_EQ(panels.system[diskRead].figure, "3.4 MB/s");
    EXPECT_EQ(panels.system[diskRead].top, 5e6);
    EXPECT_EQ(panels.system[diskWrite].top, 5e6);
    EXPECT_EQ(panels.system[diskWrite].scaleLabel(1.0), "5 MB/s");
    EXPECT_EQ(panels.system[diskWrite].scaleLabel(0.5), "2.5 MB/s");
    // No traffic is a line along the bottom of a small scale, not a full one.
    EXPECT_EQ(panels.system[netIn].top, 1000.0);
    EXPECT_EQ(panels.system[netOut].scaleLabel(1.0), "1 KB/s");
    EXPECT_EQ(panels.system[cpu].top, 1.0);
    EXPECT_EQ(panels.system[cpu].scaleLabel(1.0), "100%");
    EXPECT_EQ(panels.system[cpu].scaleLabel(0.5), "50%");
}

TEST(PerformancePanelsTest, TwoKindsOfCoreGetASectionEachInTheKernelsNumbering) {
    Graphs graphs;
    using enum CoreKind;
    const SystemSample hybrid = sampleOf(
        {0.1, 0.2, 0.3, 0.4, 0.5}, {efficiency, performance, efficiency, performance, performance});
    graphs.record(hybrid, 0.0);
    const PerformancePanels panels = performancePanels(graphs, hybrid, false);
    ASSERT_EQ(panels.cores.size(), 2u);
    EXPECT_EQ(panels.cores[0].heading, "Performance cores");
    EXPECT_EQ(titlesOf(panels.cores[0]), (std::vector<std::string>{"Core 2", "Core 4", "Core 5"}));
    EXPECT_EQ(panels.cores[0].cores[2].figure, "50%");
    EXPECT_EQ(panels.cores[1].heading, "Efficiency cores");
    EXPECT_EQ(titlesOf(panels.cores[1]), (std::vector<std::string>{"Core 1", "Core 3"}));
    EXPECT_EQ(panels.cores[1].cores[1].values, std::vector<double>{0.3});

    // One kind, whichever it is, is a single section.
    const SystemSample alike = sampleOf({0.1, 0.2}, {performance, performance});
    graphs.record(alike, 1.0);
    const auto sections = performancePanels(graphs, alike, false).cores;
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(sections[0].heading, "Cores");
}

TEST(PerformancePanelsTest, TheGraphsSayHowManyCoresAndTheSampleWhichHaveAFigure) {
    Graphs graphs;
    graphs.record(sampleOf({0.1, 0.2}), 0.0);
    graphs.record(sampleOf({0.1, 0.2, 0.3, 0.4}), 1.0);
    // A sample that knows fewer cores than the graphs leaves the rest without a figure.
    const PerformancePanels panels = performancePanels(graphs, sampleOf({0.9, 0.9}), false);
    ASSERT_EQ(panels.cores.size(), 1u);
    ASSERT_EQ(panels.cores[0].cores.size(), 4u);
    EXPECT_EQ(panels.cores[0].cores[0].values, std::vector<double>{0.1});
    EXPECT_EQ(panels.cores[0].cores[1].figure, "90%");
    EXPECT_EQ(panels.cores[0].cores[3].figure, std::nullopt);
    EXPECT_TRUE(panels.cores[0].cores[3].values.empty());
}

TEST(PerformancePanelsTest, AReadingSaysHowLongBeforeTheNewestItWasTaken) {
    Graphs graphs;
    SystemSample sample = sampleOf({0.2});
    sample.diskReadPerSecond = 2'000'000.0;
    graphs.record(sample, 100.0);
    // Quick samples while the window was hidden refresh the processor alone.
    graphs.recordLight(sampleOf({0.4}), 105.0);
    graphs.recordLight(sampleOf({0.6}), 110.0);
    sample.diskReadPerSecond = 0.0;
    graphs.record(sample, 172.0);
    const PerformancePanels panels = performancePanels(graphs, sample, false);

    const GraphPanel& processor = panels.system[cpu];
    ASSERT_EQ(processor.values.size(), 4u);
    EXPECT_EQ(processor.readout(0), "20% · 1m 12s ago");
    EXPECT_EQ(processor.readout(2), "60% · 1m 2s ago");
    EXPECT_EQ(processor.readout(3), "20% · now");
    const GraphPanel& reads = panels.system[diskRead];
    ASSERT_EQ(reads.values.size(), 2u);
    EXPECT_EQ(reads.readout(0), "2 MB/s · 1m 12s ago");
    EXPECT_EQ(reads.readout(2), "");

    // Cores started afresh keep their own readings, dated from the newest back.
    graphs.record(sampleOf({0.1, 0.3}), 173.0);
    const GraphPanel core = performancePanels(graphs, sampleOf({0.1, 0.3}), false).cores[0].cores[1];
    ASSERT_EQ(core.values.size(), 1u);
    EXPECT_EQ(core.readout(0), "30% · now");
}

} // namespace loadwarden

// The Performance tab fed prepared figures, and once the machine's own.
#include "shell/desktop/performance_tab.h"
#include "tests/shell/desktop/desktop_support.h"
#include "tests/support/event_loop.h"

#include "core/text/units_format.h"

#include <QMouseEvent>
#include <QTest>
#include <cmath>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

enum Panel { cpu, memory, swap, gpu, diskRead, diskWrite, netIn, netOut, battery, energy };

// A machine at work: every figure moves, each core in its own rhythm.
SystemSample sampleAt(int tick, std::vector<CoreKind> kinds) {
    SystemSample sample;
    for (std::size_t core = 0; core < kinds.size(); ++core) {
        sample.coreUsage.push_back(0.5 + 0.45 * std::sin(tick * 0.25 + static_cast<double>(core)));
    }
    sample.coreKinds = std::move(kinds);
    sample.memory.total = 16'000'000'000;
    sample.memory.app = 5'000'000'000 + static_cast<std::uint64_t>(tick) * 20'000'000;
    sample.memory.swapTotal = 4'000'000'000;
    sample.memory.swapUsed = 1'000'000'000;
    sample.diskReadPerSecond = 2e6 * (1 + std::sin(tick * 0.4));
    sample.diskWritePerSecond = 5e5 * (1 + std::cos(tick * 0.2));
    sample.networkInPerSecond = 8e5 * (1 + std::sin(tick * 0.1));
    sample.networkOutPerSecond = 1e5;
    return sample;
}

std::vector<CoreKind> standardCores(std::size_t count) {
    return std::vector<CoreKind>(count, CoreKind::standard);
}

// Pixels of the line's own colour; the fill under it is paler.
int linePixels(GraphView& graph) {
    const QImage image = graph.grab().toImage();
    const QRgb line = graph.palette().color(QPalette::Highlight).rgb();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == line ? 1 : 0;
        }
    }
    return count;
}

class PerformanceTabTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureWidgetApplication(); }

    void SetUp() override {
        ASSERT_TRUE(home.isValid());
        model = std::make_unique<AppModel>(AppModel::machineParts());
        tab = std::make_unique<PerformanceTab>(*model);
        tab->resize(960, 900);
        tab->show();
    }

    void TearDown() override {
        tab.reset();
        model.reset();
    }

    // Records `ticks` more samples and shows the last.
    void run(int ticks, const std::vector<CoreKind>& kinds, bool energyKnown = false) {
        for (int tick = 0; tick < ticks; ++tick) {
            sample = sampleAt(elapsed, kinds);
            graphs.record(sample, elapsed++);
            graphs.energy.append(energyKnown ? 6.0 + 3.0 * std::sin(elapsed * 0.3) : 0.0);
        }
        tab->showFigures(graphs, sample, energyKnown);
        QApplication::processEvents(); // the layout of new core graphs
    }

    GraphView& graph(Panel panel) { return *tab->systemGraphs().at(panel); }

    support::PrivateHome home;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<PerformanceTab> tab;
    Graphs graphs;
    SystemSample sample;
    int elapsed = 0;
};

// The panels' figures and rules are core's; here, what the widgets add.
TEST_F(PerformanceTabTest, EmptyGraphsFillPointByPointInTheSameWidgets) {
    tab->showFigures(graphs, sampleAt(0, standardCores(8)), false);
    QApplication::processEvents();
    support::saveScreenshot(*tab, "performance-empty");
    EXPECT_EQ(graph(cpu).accessibleName(), "CPU");
    EXPECT_EQ(linePixels(graph(cpu)), 0);
    EXPECT_TRUE(tab->coreGraphs().empty()); // no core has a series yet

    run(1, standardCores(8));
    EXPECT_GT(linePixels(graph(cpu)), 0); // one reading is a dot
    ASSERT_EQ(tab->coreGraphs().size(), 8u);
    const std::vector<GraphView*> cores = tab->coreGraphs();
    run(19, standardCores(8));
    support::saveScreenshot(*tab, "performance-filling");
    run(60, standardCores(8));
    support::saveScreenshot(*tab, "performance-full");
    EXPECT_EQ(tab->coreGraphs(), cores);
    EXPECT_TRUE(cores[7]->accessibleDescription().endsWith('%'));
}

TEST_F(PerformanceTabTest, AFigureTheSystemDoesNotGiveIsADashWithNoLine) {
    run(30, standardCores(4));
    support::saveScreenshot(*tab, "performance-missing-figures");
    for (const Panel missing : {gpu, battery, energy}) {
        EXPECT_EQ(graph(missing).figureText(), "-") << missing;
        EXPECT_EQ(graph(missing).accessibleDescription(), "Not available") << missing;
        EXPECT_EQ(linePixels(graph(missing)), 0) << missing;
    }

    // Once the system tells, the figure and its line appear.
    sample.gpu = 0.42;
    sample.battery = BatteryInfo{.percent = 0.64, .onBattery = true};
    graphs.record(sample, elapsed);
    graphs.energy.append(7.5);
    tab->showFigures(graphs, sample, true);
    support::saveScreenshot(*tab, "performance-all-figures");
    for (const Panel known : {gpu, battery, energy}) {
        EXPECT_NE(graph(known).figureText(), "-") << known;
        EXPECT_GT(linePixels(graph(known)), 0) << known;
    }
}

TEST_F(PerformanceTabTest, CoresOfTwoKindsSitInTheKeyboardOrderAndFollowTheCount) {
    std::vector<CoreKind> hybrid(4, CoreKind::efficiency);
    hybrid.insert(hybrid.end(), 8, CoreKind::performance);
    run(60, hybrid);
    support::saveScreenshot(*tab, "performance-two-kinds");
    ASSERT_EQ(tab->coreHeadings().size(), 2u);
    ASSERT_EQ(tab->coreGraphs().size(), 12u);
    // The keyboard goes from memory to the cores, and from the last core on to swap.
    EXPECT_EQ(graph(memory).nextInFocusChain(), tab->coreGraphs().front());
    EXPECT_EQ(tab->coreGraphs().back()->nextInFocusChain(), &graph(swap));

    hybrid.insert(hybrid.end(), 4, CoreKind::performance);
    run(1, hybrid);
    support::saveScreenshot(*tab, "performance-more-cores");
    ASSERT_EQ(tab->coreGraphs().size(), 16u);
    EXPECT_GT(linePixels(*tab->coreGraphs()[15]), 0);
}

TEST_F(PerformanceTabTest, RedrawsItsBackgroundInADarkPalette) {
    std::vector<CoreKind> hybrid(6, CoreKind::performance);
    hybrid.insert(hybrid.end(), 4, CoreKind::efficiency);
    run(60, hybrid, true);
    sample.gpu = 0.3;
    tab->showFigures(graphs, sample, true);
    // The graph's background is kept between repaints: it must follow the
    // palette. The battery's graph has no line to cover it; this point lies off the grid.
    const QPoint inPlot(graph(battery).width() / 2 + 10, graph(battery).height() / 2 + 8);
    const QColor lightPlot = graph(battery).grab().toImage().pixelColor(inPlot);

    const QPalette dark = support::darkPalette();
    tab->setPalette(dark);
    QApplication::processEvents();
    support::saveScreenshot(*tab, "performance-dark");
    const QColor darkPlot = graph(battery).grab().toImage().pixelColor(inPlot);
    EXPECT_GT(lightPlot.lightness(), 160);
    EXPECT_EQ(darkPlot, dark.color(QPalette::Base));
    EXPECT_GT(linePixels(graph(cpu)), 0);
}

TEST_F(PerformanceTabTest, PointingAtALineReadsOutAValueAndItsAge) {
    run(60, standardCores(4));
    GraphView& reads = graph(diskRead);
    EXPECT_EQ(reads.scaleText(), "5 MB/s / 2.5 MB/s");
    EXPECT_EQ(graph(cpu).scaleText(), "100% / 50%");
    EXPECT_EQ(reads.readout(), "");

    // The newest reading is at the right edge; the pointer finds the nearest.
    const QPoint newest(reads.width() - GraphView::margin - 2, reads.height() / 2);
    QMouseEvent move(QEvent::MouseMove, QPointF(newest), reads.mapToGlobal(QPointF(newest)),
                     Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&reads, &move);
    EXPECT_TRUE(reads.readout().endsWith(" · now")) << reads.readout().toStdString();
    EXPECT_EQ(reads.accessibleDescription(), reads.readout());
    support::saveScreenshot(*tab, "performance-readout");

    // The keyboard walks back from there, a second a reading here.
    reads.setFocus();
    QTest::keyClick(&reads, Qt::Key_Left);
    QTest::keyClick(&reads, Qt::Key_Left);
    EXPECT_TRUE(reads.readout().endsWith(" · 2s ago")) << reads.readout().toStdString();
    EXPECT_TRUE(reads.readout().startsWith(QString::fromStdString(
        formatBytesPerSecond(graphs.diskRead.values()[graphs.diskRead.values().size() - 3]))));
    QTest::keyClick(&reads, Qt::Key_Escape);
    EXPECT_EQ(reads.readout(), "");
    EXPECT_EQ(reads.accessibleDescription(), reads.figureText());
}

TEST_F(PerformanceTabTest, FollowsTheModelsTicks) {
    model->setWindowVisible(true);
    model->start();
    ASSERT_TRUE(support::processEventsUntil([&] { return graph(cpu).drawsLine(); }));
    EXPECT_NE(graph(cpu).figureText(), "-");
    EXPECT_EQ(tab->coreGraphs().size(), model->system().coreUsage.size());
}

} // namespace
} // namespace loadwarden

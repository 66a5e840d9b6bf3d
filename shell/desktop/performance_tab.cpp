#include "shell/desktop/performance_tab.h"

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

namespace loadwarden {

namespace {

constexpr int graphHeight = 120;
constexpr int coreGraphHeight = 72;
constexpr int coreColumns = 8;
// CPU and memory head the tab; the cores follow them, the other figures in pairs below.
constexpr std::size_t headGraphs = 2;
constexpr int coreRow = 1;

bool energyKnown(const std::vector<LiveProcess>& processes) {
    return std::any_of(processes.begin(), processes.end(), [](const LiveProcess& process) {
        return process.rates.energyWatts.has_value();
    });
}

int rowOf(std::size_t graph) {
    return graph < headGraphs ? 0 : coreRow + 1 + static_cast<int>((graph - headGraphs) / 2);
}

} // namespace

PerformanceTab::PerformanceTab(AppModel& model, QWidget* parent) : TabPage(parent), model_(model) {
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the graphs narrow instead
    auto* content = new QWidget(scroll);
    grid_ = new QGridLayout(content);
    grid_->setColumnStretch(0, 1);
    grid_->setColumnStretch(1, 1);
    for (std::size_t index = 0; index < PerformancePanels::systemCount; ++index) {
        auto* graph = new GraphView(content);
        graph->setFixedHeight(graphHeight);
        grid_->addWidget(graph, rowOf(index), static_cast<int>(index % 2));
        systemGraphs_.push_back(graph);
    }
    // Room to spare goes below the graphs rather than between them.
    grid_->setRowStretch(rowOf(PerformancePanels::systemCount - 1) + 1, 1);
    scroll->setWidget(content);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);

    connect(&model_, &AppModel::graphsChanged, this, &PerformanceTab::followModel);
    connect(&model_, &AppModel::systemChanged, this, &PerformanceTab::followModel);
    refresh();
}

// A tick changes the graphs and the sample together: one refresh for both,
// and none at all while the tab is out of sight.
void PerformanceTab::followModel() {
    if (refreshQueued_) {
        return;
    }
    refreshQueued_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            refreshQueued_ = false;
            refreshWhenSeen();
        },
        Qt::QueuedConnection);
}

void PerformanceTab::refresh() {
    showFigures(model_.graphs(), model_.system(), energyKnown(model_.processes()));
}

void PerformanceTab::showFigures(const Graphs& graphs, const SystemSample& sample,
                                 bool energyKnown) {
    const PerformancePanels panels = performancePanels(graphs, sample, energyKnown);
    for (std::size_t index = 0; index < systemGraphs_.size(); ++index) {
        systemGraphs_[index]->setPanel(panels.system[index]);
    }
    CoreShape shape;
    for (const CoreSection& section : panels.cores) {
        shape.emplace_back(section.heading, section.cores.size());
    }
    if (shape != coreShape_) {
        coreShape_ = std::move(shape);
        rebuildCores(panels.cores);
    }
    auto graph = coreGraphs_.begin();
    for (const CoreSection& section : panels.cores) {
        for (const GraphPanel& core : section.cores) {
            (*graph++)->setPanel(core);
        }
    }
}

void PerformanceTab::rebuildCores(const std::vector<CoreSection>& sections) {
    delete coreArea_;
    coreArea_ = nullptr;
    coreGraphs_.clear();
    coreHeadings_.clear();
    if (sections.empty()) {
        return;
    }
    coreArea_ = new QWidget(grid_->parentWidget());
    auto* cores = new QGridLayout(coreArea_);
    cores->setContentsMargins(0, 0, 0, 0);
    std::size_t widest = 0;
    for (const CoreSection& section : sections) {
        widest = std::max(widest, section.cores.size());
    }
    // As many columns for every section, so a core is as wide in each.
    const int columns = std::min(coreColumns, static_cast<int>(widest));
    int row = 0;
    for (const CoreSection& section : sections) {
        auto* heading = new QLabel(QString::fromStdString(section.heading), coreArea_);
        QFont bold = heading->font();
        bold.setBold(true);
        heading->setFont(bold);
        heading->setIndent(GraphView::margin); // in line with the graphs' titles
        cores->addWidget(heading, row++, 0, 1, columns);
        coreHeadings_.push_back(heading);
        for (std::size_t index = 0; index < section.cores.size(); ++index) {
            auto* graph = new GraphView(coreArea_);
            graph->setFixedHeight(coreGraphHeight);
            const int slot = static_cast<int>(index);
            cores->addWidget(graph, row + slot / columns, slot % columns);
            coreGraphs_.push_back(graph);
        }
        row += (static_cast<int>(section.cores.size()) + columns - 1) / columns;
    }
    for (int column = 0; column < columns; ++column) {
        cores->setColumnStretch(column, 1);
    }
    grid_->addWidget(coreArea_, coreRow, 0, 1, 2);
    coreArea_->show();

    // The keyboard visits the cores right after the CPU and memory graphs they detail.
    QWidget* previous = systemGraphs_[headGraphs - 1];
    for (GraphView* graph : coreGraphs_) {
        setTabOrder(previous, graph);
        previous = graph;
    }
    setTabOrder(previous, systemGraphs_[headGraphs]);
}

} // namespace loadwarden

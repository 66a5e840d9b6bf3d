#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/graph_view.h"
#include "shell/desktop/tab_page.h"

#include <string>
#include <utility>
#include <vector>

class QGridLayout;
class QLabel;

namespace loadwarden {

// The Performance tab: a graph of every system figure over the last minute,
// and one per core under the kind of core. The graphs are made once (those
// of the cores again only when the cores change), so a refresh repaints.
class PerformanceTab : public TabPage {
    Q_OBJECT

public:
    explicit PerformanceTab(AppModel& model, QWidget* parent = nullptr);

    // Draws these figures; the model's own as they change.
    void showFigures(const Graphs& graphs, const SystemSample& sample, bool energyKnown);

    // In the order of performancePanels.
    const std::vector<GraphView*>& systemGraphs() const { return systemGraphs_; }
    // Section by section.
    const std::vector<GraphView*>& coreGraphs() const { return coreGraphs_; }
    const std::vector<QLabel*>& coreHeadings() const { return coreHeadings_; }

private:
    // Each section's heading and number of cores.
    using CoreShape = std::vector<std::pair<std::string, std::size_t>>;

    void followModel();
    void refresh() override;
    void rebuildCores(const std::vector<CoreSection>& sections);

    AppModel& model_;
    QGridLayout* grid_;
    QWidget* coreArea_ = nullptr;
    std::vector<GraphView*> systemGraphs_;
    std::vector<GraphView*> coreGraphs_;
    std::vector<QLabel*> coreHeadings_;
    CoreShape coreShape_;
    bool refreshQueued_ = false;
};

} // namespace loadwarden

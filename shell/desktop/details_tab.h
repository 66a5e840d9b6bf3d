#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/keyed_rows.h"
#include "shell/desktop/tab_page.h"

class QTreeWidget;

namespace loadwarden {

// The Details tab: every process on a line of its own. Who made a program
// and what a process has open are read only for the lines in view, in the
// background, and filled in as they arrive.
class DetailsTab : public TabPage {
    Q_OBJECT

public:
    explicit DetailsTab(AppModel& model, QWidget* parent = nullptr);

    QTreeWidget& table() { return *table_; }
    // The line of a process, for tests.
    SortableRow* rowOf(std::int32_t pid) const;

private:
    void refresh() override;
    void followProcesses();
    void askForVisibleExtras();
    void followSelection();

    AppModel& model_;
    QTreeWidget* table_;
    KeyedRows rows_;
};

} // namespace loadwarden

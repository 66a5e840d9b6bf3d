#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/keyed_rows.h"
#include "shell/desktop/tab_page.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace loadwarden {

// The Startup apps tab: what starts with the computer and its impact, the
// user's own items switched from here.
class StartupTab : public TabPage {
    Q_OBJECT

public:
    explicit StartupTab(AppModel& model, QWidget* parent = nullptr);

    QTreeWidget& table() { return *table_; }
    QPushButton& switchButton() { return *switch_; }
    QLabel& note() { return *note_; }

private:
    void refresh() override;
    void updateButtons();
    const StartupItem* selectedItem() const;

    AppModel& model_;
    QTreeWidget* table_;
    QPushButton* switch_;
    QPushButton* reveal_;
    QLabel* note_;
    KeyedRows rows_;
    std::vector<StartupRow> shown_;
};

} // namespace loadwarden

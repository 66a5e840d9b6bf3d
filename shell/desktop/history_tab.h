#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/keyed_rows.h"
#include "shell/desktop/tab_page.h"

class QComboBox;
class QStackedWidget;
class QTreeWidget;

namespace loadwarden {

// The App history tab: what each app used over the chosen days, busiest
// first, with the deletion of the whole history.
class HistoryTab : public TabPage {
    Q_OBJECT

public:
    explicit HistoryTab(AppModel& model, QWidget* parent = nullptr);

    QComboBox& range() { return *range_; }
    QTreeWidget& table() { return *table_; }

private:
    void refresh() override;

    AppModel& model_;
    QComboBox* range_;
    QStackedWidget* pages_;
    QTreeWidget* table_;
    KeyedRows rows_;
};

} // namespace loadwarden

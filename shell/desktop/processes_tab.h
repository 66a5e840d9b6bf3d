#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/process_actions.h"
#include "shell/desktop/process_tree_model.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QTreeView;

namespace loadwarden {

// The Processes tab: the search field over the table of apps and their
// processes, refreshed in place, with each row's actions on right-click or
// the menu key, and the whole machine at a glance under it.
class ProcessesTab : public QWidget {
    Q_OBJECT

public:
    ProcessesTab(AppModel& model, ProcessActions& actions, QWidget* parent = nullptr);

    // The selected row's group: an app or process group, or a member's own.
    const ProcessGroup* selectedGroup() const;
    // The group a member row belongs to, or the selected group itself.
    const ProcessGroup* selectedParentGroup() const;
    void focusSearch();
    // Selects the group's row and scrolls to it, clearing a search that hides it.
    void showGroup(const std::string& groupID);

    QTreeView& view() { return *view_; }
    QLabel& summary() { return *summary_; }
    ProcessTreeModel& tableModel() { return table_; }

signals:
    void selectionChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    void showSummary();
    void showMenu(const QPoint& position);

    AppModel& model_;
    ProcessActions& actions_;
    ProcessTreeModel table_;
    QLineEdit* search_;
    QTreeView* view_;
    QLabel* summary_;
};

} // namespace loadwarden

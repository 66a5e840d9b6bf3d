#pragma once

#include "core/grouping/process_column.h"
#include "core/grouping/process_group.h"
#include "shell/desktop/app_icons.h"

#include <QAbstractItemModel>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace loadwarden {

// The process table as a tree: sections, their groups, and the members of
// groups with more than one process. Each refresh is applied row by row:
// rows that stay are changed in place, others are moved, inserted or
// removed, never reset, so that selection, expansion and scrolling survive.
class ProcessTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    // The key of each row, as selection and expansion keep it.
    static constexpr int keyRole = Qt::UserRole;

    explicit ProcessTreeModel(QObject* parent = nullptr);
    ~ProcessTreeModel() override;

    // limits: the CPU limit of each limited group, by id.
    void update(std::vector<ProcessGroup> groups, std::map<std::string, double> limits);
    void setSearch(const QString& search);

    // The group of a group or member row; a member row's is its own
    // single-process group. Absent for a section.
    const ProcessGroup* groupAt(const QModelIndex& index) const;
    QModelIndex indexOfKey(const std::string& key) const;
    ProcessColumn sortColumn() const { return column_; }
    bool sortAscending() const { return ascending_; }
    bool isLimited(const std::string& groupID) const { return limits_.contains(groupID); }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

private:
    struct Node;
    void rebuild();
    void apply(const Node& wanted);
    void addAndRemove(Node& parent, const Node& wanted);
    bool inOrder(const Node& parent, const Node& wanted) const;
    void reorder(Node& parent, const Node& wanted);
    void refreshCells(Node& parent, const Node& wanted);
    QModelIndex indexOf(const Node& node, int column = 0) const;
    Node* nodeAt(const QModelIndex& index) const;

    std::unique_ptr<Node> root_;
    std::vector<ProcessGroup> groups_;
    std::map<std::string, double> limits_;
    std::string search_;
    ProcessColumn column_ = ProcessColumn::cpu;
    bool ascending_ = false;
    mutable AppIcons icons_; // looked up as rows are first drawn
};

} // namespace loadwarden

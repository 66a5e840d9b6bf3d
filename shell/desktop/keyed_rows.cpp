#include "shell/desktop/keyed_rows.h"

#include "shell/desktop/column_chooser.h"

#include <QHeaderView>

namespace loadwarden {

bool SortableRow::operator<(const QTreeWidgetItem& other) const {
    const int column = treeWidget() ? treeWidget()->sortColumn() : 0;
    const QVariant mine = data(column, sortRole);
    const QVariant theirs = other.data(column, sortRole);
    if (mine.isValid() && theirs.isValid()) {
        return mine.toDouble() < theirs.toDouble();
    }
    return text(column).localeAwareCompare(other.text(column)) < 0;
}

KeyedRows::KeyedRows(QTreeWidget& table, const QStringList& titles, const QString& name,
                     int sortColumn)
    : table_(table) {
    table_.setHeaderLabels(titles);
    table_.setRootIsDecorated(false);
    table_.setUniformRowHeights(true);
    table_.setAlternatingRowColors(true);
    table_.setSortingEnabled(true);
    table_.sortByColumn(sortColumn, Qt::DescendingOrder);
    table_.setAccessibleName(name);
    offerColumnChoice(*table_.header());
}

void KeyedRows::beginRefresh() {
    untouched_ = rows_;
}

SortableRow& KeyedRows::row(const std::string& key) {
    untouched_.erase(key);
    if (const auto found = rows_.find(key); found != rows_.end()) {
        return *found->second;
    }
    auto* row = new SortableRow(&table_);
    row->setData(0, SortableRow::keyRole, QString::fromStdString(key));
    rows_.emplace(key, row);
    return *row;
}

void KeyedRows::endRefresh() {
    for (const auto& [key, row] : untouched_) {
        rows_.erase(key);
        delete row; // takes itself out of the table
    }
    untouched_.clear();
}

std::string KeyedRows::currentKey() const {
    const QTreeWidgetItem* current = table_.currentItem();
    return current ? current->data(0, SortableRow::keyRole).toString().toStdString() : "";
}

SortableRow* KeyedRows::find(const std::string& key) const {
    const auto found = rows_.find(key);
    return found == rows_.end() ? nullptr : found->second;
}

void setCell(QTreeWidgetItem& row, int column, const QString& text) {
    if (row.text(column) != text) {
        row.setText(column, text);
    }
}

void setCell(QTreeWidgetItem& row, int column, const QString& text, double amount) {
    setCell(row, column, text);
    if (row.data(column, SortableRow::sortRole) != QVariant(amount)) {
        row.setData(column, SortableRow::sortRole, amount);
    }
}

} // namespace loadwarden

#pragma once

#include <QTreeWidget>
#include <map>
#include <string>

namespace loadwarden {

// A row of a flat table that sorts by the number kept in its sortRole, and
// by its words where it has none.
class SortableRow : public QTreeWidgetItem {
public:
    static constexpr int sortRole = Qt::UserRole + 1;
    static constexpr int keyRole = Qt::UserRole + 2;

    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override;
};

// The rows of a flat table kept by key from one refresh to the next, so that
// selection, scrolling and sorting survive: a refresh touches each row it
// still has, new ones are added, and the ones it did not touch go.
class KeyedRows {
public:
    // Sets the table up with these columns, named for screen readers, and
    // sorted by `sortColumn`, largest first.
    KeyedRows(QTreeWidget& table, const QStringList& titles, const QString& name, int sortColumn);

    void beginRefresh();
    // The row of `key`, made at the end of the table when it is new.
    SortableRow& row(const std::string& key);
    void endRefresh();

    // The key of the current row; empty when none.
    std::string currentKey() const;
    SortableRow* find(const std::string& key) const;

private:
    QTreeWidget& table_;
    std::map<std::string, SortableRow*> rows_;
    std::map<std::string, SortableRow*> untouched_;
};

// Sets a cell's words, and the number it sorts by when it has one, without
// touching a cell that did not change, so nothing is redrawn for nothing.
void setCell(QTreeWidgetItem& row, int column, const QString& text);
void setCell(QTreeWidgetItem& row, int column, const QString& text, double amount);

} // namespace loadwarden

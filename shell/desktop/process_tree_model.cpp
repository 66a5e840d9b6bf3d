#include "shell/desktop/process_tree_model.h"

#include "core/control/action_text.h"
#include "core/grouping/process_grouper.h"
#include "core/grouping/row_figures.h"

#include <QApplication>
#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QStyle>
#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>

namespace loadwarden {

namespace {

constexpr std::array<const char*, 1 + figureCount> columnTitles{
    "Name", "CPU", "Memory", "Energy", "Disk", "Network", "GPU"};
constexpr std::array<ProcessColumn, 1 + figureCount> columnOrder{
    ProcessColumn::name, ProcessColumn::cpu,     ProcessColumn::memory, ProcessColumn::energy,
    ProcessColumn::disk, ProcessColumn::network, ProcessColumn::gpu};

// Heavier figures get a stronger wash of the highlight colour, readable in
// light and dark palettes alike.
QColor heatColor(int heat) {
    QColor color = QApplication::palette().color(QPalette::Highlight);
    color.setAlphaF(0.09f * static_cast<float>(heat));
    return color;
}

// The name, and beside it how the row is held.
std::string labelOf(const std::string& name, const std::optional<std::string>& held) {
    return held ? name + "  " + *held : name;
}

} // namespace

struct ProcessTreeModel::Node {
    enum class Kind { root, section, group, member };

    Kind kind = Kind::root;
    std::string key;
    GroupKind section = GroupKind::app;
    ProcessGroup group; // the group, or a member's own single-process group
    std::string label;  // the name cell
    RowFigures figures;
    Node* parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;
    mutable int cachedRow = 0;

    // Views ask for a row's place all the time; the last answer is checked
    // first and is right unless rows moved before it.
    int row() const {
        const auto& siblings = parent->children;
        const auto cached = static_cast<std::size_t>(cachedRow);
        if (cached >= siblings.size() || siblings[cached].get() != this) {
            cachedRow = static_cast<int>(
                std::find_if(siblings.begin(), siblings.end(),
                             [this](const auto& child) { return child.get() == this; }) -
                siblings.begin());
        }
        return cachedRow;
    }
    bool sameRow(const Node& other) const {
        return label == other.label && figures == other.figures && group == other.group;
    }
};

ProcessTreeModel::ProcessTreeModel(QObject* parent)
    : QAbstractItemModel(parent), root_(std::make_unique<Node>()) {}

ProcessTreeModel::~ProcessTreeModel() = default;

void ProcessTreeModel::update(std::vector<ProcessGroup> groups,
                              std::map<std::string, double> limits) {
    groups_ = std::move(groups);
    limits_ = std::move(limits);
    rebuild();
}

void ProcessTreeModel::setSearch(const QString& search) {
    search_ = search.toStdString();
    rebuild();
}

void ProcessTreeModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= static_cast<int>(columnOrder.size())) {
        return;
    }
    column_ = columnOrder[static_cast<std::size_t>(column)];
    ascending_ = order == Qt::AscendingOrder;
    rebuild();
}

// The rows this refresh wants, section by section, then applied to the tree.
void ProcessTreeModel::rebuild() {
    const auto shown =
        ProcessGrouper::sortGroups(ProcessGrouper::filter(groups_, search_), column_, ascending_);
    std::vector<std::unique_ptr<Node>> sections;
    for (const ProcessGroup& group : shown) {
        if (sections.empty() || sections.back()->section != group.kind) {
            auto section = std::make_unique<Node>();
            section->kind = Node::Kind::section;
            section->section = group.kind;
            section->key = "section:" + std::to_string(static_cast<int>(group.kind));
            section->label = std::string(sectionTitle(group.kind));
            sections.push_back(std::move(section));
        }
        auto row = std::make_unique<Node>();
        row->kind = Node::Kind::group;
        row->key = group.id;
        row->group = group;
        row->section = group.kind;
        const auto limited = limits_.find(group.id);
        const auto limit =
            limited == limits_.end() ? std::nullopt : std::optional<double>(limited->second);
        row->label = labelOf(group.name, ActionText::heldMark(group, limit));
        row->figures = groupFigures(group);
        if (group.members.size() > 1) {
            const auto visible = ProcessGrouper::visibleMembers(group, search_);
            ProcessGroup ordered = group;
            ordered.members = visible;
            for (const LiveProcess& member :
                 ProcessGrouper::sortMembers(ordered, column_, ascending_)) {
                auto memberRow = std::make_unique<Node>();
                memberRow->kind = Node::Kind::member;
                memberRow->key = "m:" + std::to_string(member.record.pid);
                memberRow->group = ProcessGrouper::memberGroup(member.record.pid, group, getpid())
                                       .value_or(ProcessGroup{});
                memberRow->section = group.kind;
                memberRow->label =
                    labelOf(member.record.name, ActionText::heldMark(memberRow->group, limit));
                memberRow->figures = memberFigures(member);
                row->children.push_back(std::move(memberRow));
            }
        }
        sections.back()->children.push_back(std::move(row));
    }
    Node wanted;
    wanted.children = std::move(sections);
    apply(wanted);
}

// Rows that went are removed and new ones appended; then, if the order
// changed, one layout change puts every row in place, carrying the views'
// selection and expansion along; last, the rows whose cells changed say so.
void ProcessTreeModel::apply(const Node& wanted) {
    addAndRemove(*root_, wanted);
    if (!inOrder(*root_, wanted)) {
        emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
        const QModelIndexList before = persistentIndexList();
        reorder(*root_, wanted);
        QModelIndexList after;
        after.reserve(before.size());
        for (const QModelIndex& index : before) {
            after.push_back(index.isValid() ? indexOf(*nodeAt(index), index.column())
                                            : QModelIndex());
        }
        changePersistentIndexList(before, after);
        emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    }
    refreshCells(*root_, wanted);
}

void ProcessTreeModel::addAndRemove(Node& parent, const Node& wanted) {
    const QModelIndex parentIndex = &parent == root_.get() ? QModelIndex() : indexOf(parent);
    auto& rows = parent.children;
    std::unordered_set<std::string_view> wantedKeys;
    for (const auto& node : wanted.children) {
        wantedKeys.insert(node->key);
    }
    for (int row = static_cast<int>(rows.size()) - 1; row >= 0; --row) {
        if (!wantedKeys.contains(rows[static_cast<std::size_t>(row)]->key)) {
            beginRemoveRows(parentIndex, row, row);
            rows.erase(rows.begin() + row);
            endRemoveRows();
        }
    }
    std::unordered_map<std::string_view, Node*> present;
    for (const auto& node : rows) {
        present.emplace(node->key, node.get());
    }
    for (const auto& next : wanted.children) {
        const auto found = present.find(next->key);
        if (found != present.end()) {
            addAndRemove(*found->second, *next);
            continue;
        }
        const int row = static_cast<int>(rows.size());
        beginInsertRows(parentIndex, row, row);
        auto added = std::make_unique<Node>();
        added->kind = next->kind;
        added->key = next->key;
        added->section = next->section;
        added->group = next->group;
        added->label = next->label;
        added->figures = next->figures;
        added->parent = &parent;
        added->cachedRow = row;
        Node& node = *added;
        rows.push_back(std::move(added));
        endInsertRows();
        addAndRemove(node, *next);
    }
}

bool ProcessTreeModel::inOrder(const Node& parent, const Node& wanted) const {
    for (std::size_t row = 0; row < wanted.children.size(); ++row) {
        if (parent.children[row]->key != wanted.children[row]->key ||
            !inOrder(*parent.children[row], *wanted.children[row])) {
            return false;
        }
    }
    return true;
}

void ProcessTreeModel::reorder(Node& parent, const Node& wanted) {
    std::unordered_map<std::string_view, std::unique_ptr<Node>> byKey;
    for (auto& node : parent.children) {
        const std::string_view key = node->key;
        byKey.emplace(key, std::move(node));
    }
    parent.children.clear();
    for (const auto& next : wanted.children) {
        auto node = std::move(byKey.at(next->key));
        node->cachedRow = static_cast<int>(parent.children.size());
        reorder(*node, *next);
        parent.children.push_back(std::move(node));
    }
}

void ProcessTreeModel::refreshCells(Node& parent, const Node& wanted) {
    const QModelIndex parentIndex = &parent == root_.get() ? QModelIndex() : indexOf(parent);
    int firstChanged = static_cast<int>(wanted.children.size());
    int lastChanged = -1;
    for (std::size_t position = 0; position < wanted.children.size(); ++position) {
        Node& current = *parent.children[position];
        const Node& next = *wanted.children[position];
        if (!current.sameRow(next)) {
            current.group = next.group;
            current.label = next.label;
            current.figures = next.figures;
            firstChanged = std::min(firstChanged, static_cast<int>(position));
            lastChanged = std::max(lastChanged, static_cast<int>(position));
        }
        refreshCells(current, next);
    }
    // One range for all that changed: views look each row up, which costs.
    if (firstChanged <= lastChanged) {
        emit dataChanged(index(firstChanged, 0, parentIndex),
                         index(lastChanged, columnCount() - 1, parentIndex));
    }
}

QModelIndex ProcessTreeModel::indexOf(const Node& node, int column) const {
    return createIndex(node.row(), column, const_cast<Node*>(&node));
}

ProcessTreeModel::Node* ProcessTreeModel::nodeAt(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

const ProcessGroup* ProcessTreeModel::groupAt(const QModelIndex& index) const {
    const Node* node = nodeAt(index);
    return node->kind == Node::Kind::group || node->kind == Node::Kind::member ? &node->group
                                                                               : nullptr;
}

QModelIndex ProcessTreeModel::indexOfKey(const std::string& key) const {
    for (const auto& section : root_->children) {
        if (section->key == key) {
            return indexOf(*section);
        }
        for (const auto& group : section->children) {
            if (group->key == key) {
                return indexOf(*group);
            }
            for (const auto& member : group->children) {
                if (member->key == key) {
                    return indexOf(*member);
                }
            }
        }
    }
    return {};
}

QModelIndex ProcessTreeModel::index(int row, int column, const QModelIndex& parent) const {
    const Node* node = nodeAt(parent);
    if (row < 0 || column < 0 || column >= columnCount() ||
        row >= static_cast<int>(node->children.size())) {
        return {};
    }
    return createIndex(row, column, node->children[static_cast<std::size_t>(row)].get());
}

QModelIndex ProcessTreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) {
        return {};
    }
    const Node* parent = nodeAt(child)->parent;
    return parent == root_.get() ? QModelIndex() : indexOf(*parent);
}

int ProcessTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) {
        return 0;
    }
    return static_cast<int>(nodeAt(parent)->children.size());
}

int ProcessTreeModel::columnCount(const QModelIndex&) const {
    return static_cast<int>(columnTitles.size());
}

QVariant ProcessTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const Node& node = *nodeAt(index);
    const int column = index.column();
    const bool isSection = node.kind == Node::Kind::section;
    switch (role) {
    case Qt::DisplayRole:
        if (column == 0) {
            return QString::fromStdString(node.label);
        }
        return isSection ? QVariant()
                         : QString::fromStdString(
                               node.figures[static_cast<std::size_t>(column - 1)].text);
    case Qt::TextAlignmentRole:
        return column == 0 ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                           : QVariant(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::BackgroundRole:
        if (column > 0 && !isSection) {
            if (const int heat = node.figures[static_cast<std::size_t>(column - 1)].heat) {
                return heatColor(heat);
            }
        }
        return {};
    case Qt::FontRole:
        if (isSection) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    case Qt::DecorationRole:
        if (column != 0 || isSection) {
            return {};
        }
        if (node.group.isSelf) {
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
        }
        if (node.group.isProtected) {
            return QIcon::fromTheme(QStringLiteral("changes-prevent"));
        }
        if (node.group.bundlePath) {
            return icons_.icon(*node.group.bundlePath);
        }
        return {};
    case Qt::ToolTipRole:
        if (isSection) {
            return {};
        }
        if (node.group.isSelf) {
            return QString::fromStdString(ActionText::selfHelp());
        }
        if (const auto refusal = ActionText::menuRefusal(node.group)) {
            return QString::fromStdString(*refusal);
        }
        return QString::fromStdString(node.label);
    case keyRole:
        return QString::fromStdString(node.key);
    default:
        return {};
    }
}

QVariant ProcessTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return {};
    }
    if (role == Qt::DisplayRole) {
        return QString::fromLatin1(columnTitles[static_cast<std::size_t>(section)]);
    }
    if (role == Qt::TextAlignmentRole) {
        return section == 0 ? QVariant(Qt::AlignLeft) : QVariant(Qt::AlignRight);
    }
    return {};
}

} // namespace loadwarden

#include "shell/desktop/processes_tab.h"

#include "core/control/action_text.h"
#include "core/model/machine_summary.h"
#include "shell/desktop/column_chooser.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

constexpr int figureColumnWidth = 90;

} // namespace

ProcessesTab::ProcessesTab(AppModel& model, ProcessActions& actions, QWidget* parent)
    : QWidget(parent), model_(model), actions_(actions), search_(new QLineEdit(this)),
      view_(new QTreeView(this)), summary_(new QLabel(this)) {
    search_->setPlaceholderText(QStringLiteral("Search apps and processes"));
    search_->setClearButtonEnabled(true);
    for (QToolButton* clear : search_->findChildren<QToolButton*>()) {
        clear->setAccessibleName(QStringLiteral("Clear Search"));
    }
    search_->setAccessibleName(QStringLiteral("Search"));

    view_->setModel(&table_);
    view_->setAccessibleName(QStringLiteral("Processes"));
    view_->setUniformRowHeights(true);
    view_->setAlternatingRowColors(true);
    view_->setSortingEnabled(true);
    view_->sortByColumn(1, Qt::DescendingOrder);
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    QHeaderView* header = view_->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column = 1; column < table_.columnCount(); ++column) {
        header->setSectionResizeMode(column, QHeaderView::Interactive);
        header->resizeSection(column, figureColumnWidth);
    }
    offerColumnChoice(*header);
    // However long the line grows, it never widens the window.
    summary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    summary_->setMinimumHeight(summary_->fontMetrics().height());
    summary_->setTextFormat(Qt::PlainText);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(search_);
    layout->addWidget(view_);
    layout->addWidget(summary_);

    // The model keeps what the views share: the filter, the sorting, the
    // groups opened and the selected group.
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& search) {
        table_.setSearch(search);
        model_.setSearch(search.toStdString());
    });
    connect(header, &QHeaderView::sortIndicatorChanged, this,
            [this] { model_.setSort(table_.sortColumn(), table_.sortAscending()); });
    connect(view_, &QTreeView::expanded, this, [this](const QModelIndex& row) {
        if (const ProcessGroup* group = table_.groupAt(row)) {
            model_.setExpanded(group->id, true);
        }
    });
    connect(view_, &QTreeView::collapsed, this, [this](const QModelIndex& row) {
        if (const ProcessGroup* group = table_.groupAt(row)) {
            model_.setExpanded(group->id, false);
        }
    });
    connect(&model_, &AppModel::groupsChanged, this, &ProcessesTab::refresh);
    connect(&model_, &AppModel::processesChanged, this, &ProcessesTab::showSummary);
    connect(&model_, &AppModel::systemChanged, this, &ProcessesTab::showSummary);
    connect(view_, &QTreeView::customContextMenuRequested, this, &ProcessesTab::showMenu);
    view_->installEventFilter(this);
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        const ProcessGroup* group = selectedGroup();
        model_.setSelection(group ? std::optional(group->id) : std::nullopt);
        emit selectionChanged();
    });
    // Sections open; a new section opens as it appears.
    connect(&table_, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& under, int first, int last) {
                if (!under.isValid()) {
                    for (int row = first; row <= last; ++row) {
                        view_->expand(table_.index(row, 0));
                    }
                }
            });
    refresh();
    showSummary();
}

// Blank until the first reading, rather than a machine of nothing.
void ProcessesTab::showSummary() {
    const auto& processes = model_.processes();
    summary_->setText(processes.empty() ? QString()
                                        : QString::fromStdString(
                                              machineSummary(processes.size(), model_.system())));
}

void ProcessesTab::refresh() {
    table_.update(model_.groups(), model_.controller().limits());
    emit selectionChanged(); // the selected group's figures and state may have changed
}

const ProcessGroup* ProcessesTab::selectedGroup() const {
    return table_.groupAt(view_->currentIndex());
}

const ProcessGroup* ProcessesTab::selectedParentGroup() const {
    const QModelIndex current = view_->currentIndex();
    const QModelIndex parent = current.parent();
    return parent.isValid() && table_.groupAt(parent) ? table_.groupAt(parent)
                                                      : table_.groupAt(current);
}

void ProcessesTab::focusSearch() {
    search_->setFocus();
    search_->selectAll();
}

void ProcessesTab::showGroup(const std::string& groupID) {
    if (!table_.indexOfKey(groupID).isValid()) {
        search_->clear();
    }
    const QModelIndex row = table_.indexOfKey(groupID);
    if (row.isValid()) {
        view_->setCurrentIndex(row);
        view_->scrollTo(row);
        view_->setFocus();
    }
}

// The menu key, or Shift-F10, opens the selected row's menu beside it. The
// keys are handled here, not left to the window system, which may say nothing.
bool ProcessesTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched != view_) {
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() == QEvent::ContextMenu &&
        static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) {
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Menu ||
            (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier)) {
            showMenu(view_->visualRect(view_->currentIndex()).center());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ProcessesTab::showMenu(const QPoint& position) {
    const QModelIndex index =
        view_->indexAt(position).isValid() ? view_->indexAt(position) : view_->currentIndex();
    const ProcessGroup* group = table_.groupAt(index);
    if (!group) {
        return;
    }
    QMenu menu(this);
    if (index.parent().isValid() && table_.groupAt(index.parent())) {
        menu.addSection(QString::fromStdString(ActionText::singleProcessHeader(*group)));
    }
    actions_.fill(menu, *group);
    menu.exec(view_->viewport()->mapToGlobal(position));
}

} // namespace loadwarden

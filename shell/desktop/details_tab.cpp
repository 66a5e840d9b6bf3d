#include "shell/desktop/details_tab.h"

#include "core/details/process_details.h"
#include "shell/desktop/qt_text.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>
#include <unordered_map>

namespace loadwarden {

namespace {

constexpr int pidColumn = 0;
constexpr int pathRole = Qt::UserRole;

QStringList columnTitles() {
    QStringList titles;
    for (const ProcessFact fact : allProcessFacts) {
        titles << qtText(title(fact));
    }
    return titles;
}

} // namespace

DetailsTab::DetailsTab(AppModel& model, QWidget* parent)
    : TabPage(parent), model_(model), table_(new QTreeWidget(this)),
      rows_(*table_, columnTitles(), QStringLiteral("Details"),
            static_cast<int>(ProcessFact::cpu)) {
    table_->header()->setSectionResizeMode(QHeaderView::Interactive);
    table_->header()->resizeSection(static_cast<int>(ProcessFact::name), 200);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_);

    connect(&model_, &AppModel::processesChanged, this, &DetailsTab::followProcesses);
    connect(&model_, &AppModel::codeInfoChanged, this, &DetailsTab::refreshWhenSeen);
    connect(&model_, &AppModel::fileInfoChanged, this, &DetailsTab::refreshWhenSeen);
    connect(table_->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &DetailsTab::askForVisibleExtras);
    connect(table_, &QTreeWidget::currentItemChanged, this, &DetailsTab::followSelection);
    followProcesses();
}

namespace {

// Each limited app's limit, by the pids of its processes.
std::unordered_map<std::int32_t, double> limitsByPID(AppModel& model) {
    std::unordered_map<std::int32_t, double> byPID;
    const std::map<std::string, double> limits = model.controller().limits();
    if (limits.empty()) {
        return byPID;
    }
    for (const ProcessGroup& group : model.groups()) {
        if (const auto limit = limits.find(group.id); limit != limits.end()) {
            for (const LiveProcess& member : group.members) {
                byPID.emplace(member.record.pid, limit->second);
            }
        }
    }
    return byPID;
}

} // namespace

void DetailsTab::refresh() {
    const auto& codeInfo = model_.codeInfo();
    const auto& fileInfo = model_.fileInfo();
    const auto limits = limitsByPID(model_);
    rows_.beginRefresh();
    for (const LiveProcess& process : model_.processes()) {
        const auto code = codeInfo.find(process.record.path);
        const auto files = fileInfo.find(process.record.pid);
        const auto limit = limits.find(process.record.pid);
        const ProcessExtras extras{
            .code = code == codeInfo.end() ? nullptr : &code->second,
            .files = files == fileInfo.end() ? nullptr : &files->second,
            .limit = limit == limits.end() ? std::nullopt : std::optional(limit->second)};
        SortableRow& row = rows_.row(std::to_string(process.record.pid));
        row.setData(pidColumn, pathRole, QString::fromStdString(process.record.path));
        for (const ProcessFact fact : allProcessFacts) {
            const int column = static_cast<int>(fact);
            const QString words = QString::fromStdString(factText(fact, process, extras));
            // Numbers line up on the right and sort by their value.
            if (const auto amount = factAmount(fact, process, extras)) {
                setCell(row, column, words, *amount);
                row.setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
            } else {
                setCell(row, column, words);
            }
        }
    }
    rows_.endRefresh();
    askForVisibleExtras();
}

void DetailsTab::followProcesses() {
    refreshWhenSeen();
    // What the selected process has open is read again with each new list;
    // the other lines keep what was read when they came into view.
    if (const auto selected = model_.detailSelection(); selected && isVisible()) {
        model_.requestFileInfo(*selected);
    }
}

void DetailsTab::askForVisibleExtras() {
    const int bottom = table_->viewport()->height();
    for (QTreeWidgetItem* line = table_->itemAt(0, 0);
         line && table_->visualItemRect(line).top() < bottom; line = table_->itemBelow(line)) {
        const QString path = line->data(pidColumn, pathRole).toString();
        if (!path.isEmpty()) {
            model_.requestCodeInfo(path.toStdString());
        }
        if (const std::int32_t pid = line->text(pidColumn).toInt();
            !model_.fileInfo().contains(pid)) {
            model_.requestFileInfo(pid);
        }
    }
}

void DetailsTab::followSelection() {
    const std::string key = rows_.currentKey();
    const auto pid = key.empty() ? std::nullopt : std::optional<std::int32_t>(std::stoi(key));
    model_.setDetailSelection(pid);
    if (pid) {
        model_.requestFileInfo(*pid);
    }
}

SortableRow* DetailsTab::rowOf(std::int32_t pid) const {
    return rows_.find(std::to_string(pid));
}

} // namespace loadwarden

#include "shell/desktop/history_tab.h"

#include "core/history/usage_figures.h"
#include "shell/desktop/delete_history.h"
#include "shell/desktop/qt_text.h"

#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

constexpr std::array ranges{HistoryRange::today, HistoryRange::week, HistoryRange::month};

QStringList columnTitles() {
    QStringList titles{QStringLiteral("Name")};
    for (const std::string_view title : usageColumnTitles) {
        titles << qtText(title);
    }
    return titles;
}

} // namespace

HistoryTab::HistoryTab(AppModel& model, QWidget* parent)
    : TabPage(parent), model_(model), range_(new QComboBox(this)), pages_(new QStackedWidget(this)),
      table_(new QTreeWidget(this)),
      rows_(*table_, columnTitles(), QStringLiteral("App history"), 1) {
    for (const HistoryRange range : ranges) {
        range_->addItem(qtText(title(range)), dayCount(range));
    }
    range_->setCurrentIndex(std::max(0, range_->findData(model_.historyDays())));
    auto* show = new QLabel(QStringLiteral("Show"), this);
    show->setBuddy(range_);
    range_->setAccessibleName(QStringLiteral("Show"));
    auto* remove = new QPushButton(QStringLiteral("Delete Usage History…"), this);

    table_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    table_->header()->setStretchLastSection(false);

    auto* empty = new QLabel(QStringLiteral("No history yet"), this);
    empty->setAlignment(Qt::AlignCenter);
    empty->setEnabled(false); // the palette's quieter text
    pages_->addWidget(table_);
    pages_->addWidget(empty);

    auto* bar = new QHBoxLayout;
    bar->addWidget(show);
    bar->addWidget(range_);
    bar->addStretch();
    bar->addWidget(remove);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(pages_);

    connect(range_, &QComboBox::currentIndexChanged, this,
            [this] { model_.setHistoryDays(range_->currentData().toInt()); });
    connect(remove, &QPushButton::clicked, this, [this] { confirmDeleteHistory(model_, this); });
    connect(&model_, &AppModel::historyDaysChanged, this, &HistoryTab::refresh);
    connect(&model_, &AppModel::historyChanged, this, &HistoryTab::refreshWhenSeen);
    refresh();
}

void HistoryTab::refresh() {
    range_->setCurrentIndex(std::max(0, range_->findData(model_.historyDays())));
    const std::vector<AppUsage> apps = model_.historySummary();
    const std::string home = QDir::homePath().toStdString();
    rows_.beginRefresh();
    for (const AppUsage& app : apps) {
        SortableRow& row = rows_.row(app.key);
        setCell(row, 0, QString::fromStdString(app.name));
        if (const auto folder = usageFolder(app, home)) {
            row.setToolTip(0, QString::fromStdString(*folder));
        }
        const auto figures = usageFigures(app.totals);
        const auto amounts = usageAmounts(app.totals);
        for (std::size_t column = 0; column < figures.size(); ++column) {
            setCell(row, static_cast<int>(column) + 1, QString::fromStdString(figures[column]),
                    amounts[column]);
            row.setTextAlignment(static_cast<int>(column) + 1, Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    rows_.endRefresh();
    pages_->setCurrentIndex(apps.empty() ? 1 : 0);
}

} // namespace loadwarden

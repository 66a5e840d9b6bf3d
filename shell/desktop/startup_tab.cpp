#include "shell/desktop/startup_tab.h"

#include "core/startup/startup_text.h"
#include "core/text/platform_wording.h"
#include "shell/desktop/qt_text.h"
#include "shell/desktop/reveal_file.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

enum Column { name, kind, runs, status, impact };

std::string keyOf(const StartupItem& item) {
    return item.plistPath + '\n' + item.label;
}

} // namespace

StartupTab::StartupTab(AppModel& model, QWidget* parent)
    : TabPage(parent), model_(model), table_(new QTreeWidget(this)),
      switch_(new QPushButton(QStringLiteral("Turn Off"), this)),
      reveal_(new QPushButton(revealFileTitle(), this)), note_(new QLabel(this)),
      rows_(*table_,
            {QStringLiteral("Name"), QStringLiteral("Kind"), QStringLiteral("Runs"),
             QStringLiteral("Status"), QStringLiteral("Impact")},
            QStringLiteral("Startup apps"), impact) {
    table_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->header()->setSectionResizeMode(name, QHeaderView::Stretch);
    table_->header()->setStretchLastSection(false);

    auto* reload = new QPushButton(QIcon::fromTheme(QStringLiteral("view-refresh")),
                                   QStringLiteral("Refresh"), this);
    note_->setWordWrap(true);
    note_->setEnabled(false); // the palette's quieter text

    auto* bar = new QHBoxLayout;
    bar->addWidget(switch_);
    bar->addWidget(note_, 1);
    bar->addWidget(reveal_);
    if constexpr (hasSystemSettings) {
        auto* loginItems = new QPushButton(QStringLiteral("Open Login Items Settings"), this);
        connect(loginItems, &QPushButton::clicked, this,
                [] { openSystemSettings("com.apple.LoginItems-Settings.extension"); });
        bar->addWidget(loginItems);
    }
    bar->addWidget(reload);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_);
    layout->addLayout(bar);

    connect(switch_, &QPushButton::clicked, this, [this] {
        if (const StartupItem* item = selectedItem()) {
            model_.setStartupItemEnabled(*item, item->disabled);
        }
    });
    connect(reveal_, &QPushButton::clicked, this, [this] {
        if (const StartupItem* item = selectedItem()) {
            revealFile(qtText(item->plistPath.empty() ? item->program : item->plistPath));
        }
    });
    connect(reload, &QPushButton::clicked, &model_, &AppModel::refreshStartupItems);
    connect(table_, &QTreeWidget::currentItemChanged, this, &StartupTab::updateButtons);
    connect(&model_, &AppModel::startupItemsChanged, this, &StartupTab::refresh);
    // Impact follows what the items' programs use now.
    connect(&model_, &AppModel::processesChanged, this, &StartupTab::refreshWhenSeen);
    refresh();
}

void StartupTab::refresh() {
    shown_ = model_.startupRows();
    rows_.beginRefresh();
    for (std::size_t index = 0; index < shown_.size(); ++index) {
        const StartupRow& shown = shown_[index];
        SortableRow& row = rows_.row(keyOf(shown.item));
        row.setData(name, Qt::UserRole, static_cast<qulonglong>(index));
        setCell(row, name, qtText(shown.item.name));
        setCell(row, kind, qtText(StartupText::kind(shown.item)));
        setCell(row, runs, qtText(StartupText::runs(shown.item)));
        setCell(row, status, qtText(StartupText::status(shown.item)));
        setCell(row, impact, qtText(StartupText::impact(shown.impact)),
                static_cast<double>(shown.impact));
        row.setToolTip(
            name, qtText(shown.item.plistPath.empty() ? shown.item.program : shown.item.plistPath));
    }
    rows_.endRefresh();
    updateButtons();
}

const StartupItem* StartupTab::selectedItem() const {
    const QTreeWidgetItem* current = table_->currentItem();
    if (!current) {
        return nullptr;
    }
    const auto index = current->data(name, Qt::UserRole).toULongLong();
    return index < shown_.size() ? &shown_[index].item : nullptr;
}

void StartupTab::updateButtons() {
    const StartupItem* item = selectedItem();
    const bool changeable = item && model_.canChangeStartupItem(*item);
    switch_->setText(item && item->disabled ? QStringLiteral("Turn On")
                                            : QStringLiteral("Turn Off"));
    switch_->setVisible(!item || changeable);
    switch_->setEnabled(changeable);
    note_->setText(item && !changeable ? qtText(StartupText::onlyAnAdministrator()) : QString());
    reveal_->setEnabled(item != nullptr);
}

} // namespace loadwarden

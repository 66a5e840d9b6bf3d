#include "shell/desktop/command_palette.h"

#include "shell/desktop/qt_text.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

constexpr std::size_t maxShown = 12;

// A menu title as a command reads: no mnemonic marks.
std::string commandTitle(const QAction& action) {
    return action.text().remove(QLatin1Char('&')).toStdString();
}

QString line(const PaletteEntry& entry) {
    QString words = qtText(entry.phrase()).simplified(); // "Go to " ends in a space of its own
    if (!entry.detail.empty()) {
        words += QStringLiteral("  —  ") + qtText(entry.detail);
    }
    if (const std::string_view risk = PaletteCommands::riskText(entry.risk); !risk.empty()) {
        words += QStringLiteral("  ·  ") + qtText(risk);
    }
    return words;
}

} // namespace

CommandPalette::CommandPalette(AppModel& model, ProcessActions& actions,
                               std::vector<QAction*> menuCommands, QWidget* parent)
    : QDialog(parent), model_(model), actions_(actions), menuCommands_(std::move(menuCommands)),
      field_(new QLineEdit(this)), list_(new QListWidget(this)) {
    setWindowTitle(QStringLiteral("Command Palette"));
    resize(560, 380);
    field_->setPlaceholderText(QStringLiteral("Type a command, an app or a pid"));
    field_->setAccessibleName(QStringLiteral("Command"));
    field_->installEventFilter(this);
    list_->setAccessibleName(QStringLiteral("Commands"));
    list_->setUniformItemSizes(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(field_);
    layout->addWidget(list_);

    connect(field_, &QLineEdit::textChanged, this, &CommandPalette::rank);
    connect(field_, &QLineEdit::returnPressed, this, &CommandPalette::actOnCurrent);
    connect(list_, &QListWidget::itemActivated, this, &CommandPalette::actOnCurrent);
}

void CommandPalette::openAfresh() {
    std::vector<std::string> commands;
    for (const QAction* command : menuCommands_) {
        if (command->isEnabled()) {
            commands.push_back(commandTitle(*command));
        }
    }
    entries_ = PaletteCommands::entries(model_.groups(), model_.controller().limits(), commands);
    field_->clear();
    rank();
    show();
    raise();
    activateWindow();
    field_->setFocus();
}

void CommandPalette::rank() {
    shown_ = PaletteRanker::rank(entries_, field_->text().toStdString(), maxShown);
    list_->clear();
    for (const PaletteEntry& entry : shown_) {
        list_->addItem(line(entry));
    }
    list_->setCurrentRow(shown_.empty() ? -1 : 0);
}

// The arrows move through the list while the field keeps the keyboard.
bool CommandPalette::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Up) {
            const int step = key == Qt::Key_Down ? 1 : -1;
            const int row = std::clamp(list_->currentRow() + step, 0, list_->count() - 1);
            list_->setCurrentRow(row);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CommandPalette::actOnCurrent() {
    const int row = list_->currentRow();
    if (row < 0 || static_cast<std::size_t>(row) >= shown_.size()) {
        return;
    }
    const PaletteEntry entry = shown_[static_cast<std::size_t>(row)];
    accept();
    act(entry);
}

void CommandPalette::act(const PaletteEntry& entry) {
    const auto command = PaletteCommands::command(entry);
    if (!command) {
        return;
    }
    using Verb = PaletteCommands::Verb;
    if (command->verb == Verb::goTo) {
        if (const auto tab = fromRawValue<Tab>(command->subject)) {
            emit tabRequested(*tab);
        }
        return;
    }
    if (command->verb == Verb::runMenuCommand) {
        for (QAction* menuCommand : menuCommands_) {
            if (commandTitle(*menuCommand) == command->subject && menuCommand->isEnabled()) {
                menuCommand->trigger();
            }
        }
        return;
    }
    // The app as it is now; it may have gone since the palette opened.
    const ProcessGroup* found = model_.group(command->subject);
    if (!found) {
        model_.setProblem(qtText(entry.target) + QStringLiteral(" is no longer running."));
        return;
    }
    const ProcessGroup group = *found;
    switch (command->verb) {
    case Verb::show:
        emit groupRequested(group.id);
        break;
    case Verb::pause:
    case Verb::resume:
        actions_.pauseOrResume(group);
        break;
    case Verb::removeLimit:
        actions_.removeLimit(group);
        break;
    case Verb::quit:
        actions_.quit(group);
        break;
    case Verb::forceQuit:
        actions_.forceQuit(group);
        break;
    case Verb::goTo:
    case Verb::runMenuCommand:
        break;
    }
}

} // namespace loadwarden

#include "shell/desktop/process_actions.h"

#include "app/control/process_start_time.h"
#include "core/control/action_text.h"
#include "core/control/process_policy.h"
#include "core/text/units_format.h"
#include "shell/desktop/qt_text.h"

#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace loadwarden {

namespace {

// How long a relaunched app may take to quit, and how often to look.
constexpr int reopenPatience = 30'000;
constexpr int reopenPoll = 250;

} // namespace

ProcessActions::ProcessActions(AppModel& model, QWidget* dialogParent)
    : QObject(dialogParent), model_(model), dialogParent_(dialogParent) {}

bool ProcessActions::offers(ProcessAction action, const ProcessGroup& group) const {
    return ProcessPolicy::offers(action, group, model_.controller().limitOf(group.id).has_value());
}

void ProcessActions::fill(QMenu& menu, const ProcessGroup& group) {
    if (const auto refusal = ActionText::menuRefusal(group)) {
        menu.addAction(qtText(*refusal))->setEnabled(false);
        return;
    }
    const auto add = [&](ProcessAction action, const std::string& title, auto perform) {
        QAction* entry = menu.addAction(qtText(title));
        entry->setEnabled(offers(action, group));
        connect(entry, &QAction::triggered, this, [group, perform] { perform(group); });
        return entry;
    };
    add(ProcessAction::quit, ActionText::quitTitle(group),
        [this](const ProcessGroup& target) { quit(target); });
    add(ProcessAction::forceQuit, "Force Quit…",
        [this](const ProcessGroup& target) { forceQuit(target); });
    menu.addSeparator();
    const bool paused = offers(ProcessAction::resume, group);
    add(paused ? ProcessAction::resume : ProcessAction::pause,
        paused ? ActionText::resumeTitle(group) : ActionText::pauseTitle(group),
        [this](const ProcessGroup& target) { pauseOrResume(target); })
        ->setToolTip(qtText(paused ? ActionText::resumeHelp() : ActionText::pauseHelp()));
    if (model_.controller().limitOf(group.id)) {
        add(ProcessAction::limit, ActionText::limitTitle(group, true),
            [this](const ProcessGroup& target) { removeLimit(target); });
        return;
    }
    QMenu* limits = menu.addMenu(qtText(ActionText::limitTitle(group, false)));
    limits->setEnabled(offers(ProcessAction::limit, group));
    for (const double percent : limitChoices) {
        connect(limits->addAction(qtText(formatPercent(percent) + " of a core")),
                &QAction::triggered, this, [this, group, percent] { limit(group, percent); });
    }
}

void ProcessActions::quit(const ProcessGroup& group) {
    report(model_.controller().quit(group), group);
}

bool ProcessActions::forceQuit(const ProcessGroup& group) {
    QMessageBox confirm(QMessageBox::Warning, qtText("Force Quit " + group.name + "?"),
                        qtText("Force Quit " + group.name + "?"), QMessageBox::Cancel,
                        dialogParent_);
    confirm.setInformativeText(qtText(ActionText::forceQuitConfirmation(group)));
    QPushButton* force =
        confirm.addButton(QStringLiteral("Force Quit"), QMessageBox::DestructiveRole);
    confirm.setDefaultButton(QMessageBox::Cancel);
    model_.setPendingForceQuit(PendingForceQuit{group, PendingForceQuit::Kind::forceQuit});
    confirm.exec();
    model_.setPendingForceQuit(std::nullopt);
    if (confirm.clickedButton() != force) {
        return false;
    }
    report(model_.controller().forceQuit(group), group);
    return true;
}

void ProcessActions::pauseOrResume(const ProcessGroup& group) {
    report(offers(ProcessAction::resume, group) ? model_.controller().resume(group)
                                                : model_.controller().pause(group),
           group);
}

void ProcessActions::limit(const ProcessGroup& group, double percent) {
    report(model_.controller().limit(group, percent), group);
}

void ProcessActions::removeLimit(const ProcessGroup& group) {
    model_.controller().removeLimit(group.id);
}

void ProcessActions::relaunch(const ProcessGroup& group) {
    const std::int32_t pid = group.leader.record.pid;
    const auto reopening = reopeningOf(group);
    const auto started = processStartTime(pid);
    if (!reopening || !started) {
        model_.setProblem(qtText(group.name + " can’t be reopened: the system doesn’t say how it "
                                              "was started."));
        return;
    }
    if (model_.controller().quit(group) != ProcessController::Result::done) {
        report(ProcessController::Result::refused, group);
        return;
    }
    reopenWhenGone(pid, *started, *reopening, qtText(group.name), reopenPatience / reopenPoll);
}

// Polled rather than waited on: an app may take a while to save and quit,
// and the window stays live meanwhile. A pid taken by another process
// counts as gone.
void ProcessActions::reopenWhenGone(std::int32_t pid, Date started, Reopening reopening,
                                    QString name, int triesLeft) {
    if (processStartTime(pid) != started) {
        if (!reopen(reopening)) {
            model_.setProblem(name + QStringLiteral(" quit but couldn’t be opened again."));
        }
        return;
    }
    if (triesLeft == 0) {
        model_.setProblem(name + QStringLiteral(" didn’t quit, so it wasn’t reopened."));
        return;
    }
    QTimer::singleShot(reopenPoll, this,
                       [=, this] { reopenWhenGone(pid, started, reopening, name, triesLeft - 1); });
}

void ProcessActions::report(ProcessController::Result result, const ProcessGroup& group) {
    switch (result) {
    case ProcessController::Result::done:
        return;
    case ProcessController::Result::refused:
        model_.setProblem(qtText(
            ActionText::menuRefusal(group).value_or(group.name + " can’t be changed right now.")));
        return;
    case ProcessController::Result::notRecorded:
        model_.setProblem(qtText("Nothing was paused: Loadwarden couldn’t note " + group.name +
                                 " down to resume it later."));
        return;
    }
}

} // namespace loadwarden

#pragma once

#include "app/control/reopening.h"
#include "app/model/app_model.h"
#include "core/control/process_action.h"

#include <QObject>
#include <array>

class QMenu;
class QWidget;

namespace loadwarden {

// The actions on one row of the process table, as menus offer them: asked of
// the policy, carried out by the model's controller, a force quit always
// confirmed first. What goes wrong becomes the model's problem.
class ProcessActions : public QObject {
    Q_OBJECT

public:
    // The shares of one core the Limit CPU menu offers.
    static constexpr std::array<double, 4> limitChoices{10.0, 25.0, 50.0, 100.0};

    ProcessActions(AppModel& model, QWidget* dialogParent);

    // Every action for the group, the ones the policy refuses greyed out
    // under the reason.
    void fill(QMenu& menu, const ProcessGroup& group);

    void quit(const ProcessGroup& group);
    // Asks first; true when the user confirmed.
    bool forceQuit(const ProcessGroup& group);
    void pauseOrResume(const ProcessGroup& group);
    void limit(const ProcessGroup& group, double percent);
    void removeLimit(const ProcessGroup& group);
    // Quits the app, and once its leader is gone starts it again as it was started.
    void relaunch(const ProcessGroup& group);

    bool offers(ProcessAction action, const ProcessGroup& group) const;

private:
    void reopenWhenGone(std::int32_t pid, Date started, Reopening reopening, QString name,
                        int triesLeft);
    void report(ProcessController::Result result, const ProcessGroup& group);

    AppModel& model_;
    QWidget* dialogParent_;
};

} // namespace loadwarden

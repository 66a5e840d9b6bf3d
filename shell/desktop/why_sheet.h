#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/process_actions.h"

#include <QDialog>

class QLabel;
class QTreeWidget;
class QVBoxLayout;

namespace loadwarden {

// What slows the computer down now, a card per cause with its fix, and the
// busiest apps. It follows the model while it is open.
class WhySheet : public QDialog {
    Q_OBJECT

public:
    WhySheet(AppModel& model, ProcessActions& actions, QWidget* parent = nullptr);

    const std::vector<Cause>& causes() const { return causes_; }
    // Carries out the fix of the cause at that place, as its button does.
    void applyFix(std::size_t index);

signals:
    void startupAppsRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void rebuildCards();
    QWidget* card(std::size_t index);

    AppModel& model_;
    ProcessActions& actions_;
    std::vector<Cause> causes_;
    std::map<std::string, std::string> readOnlyReasons_;
    QVBoxLayout* cards_;
    QTreeWidget* busiest_;
};

} // namespace loadwarden

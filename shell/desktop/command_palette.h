#pragma once

#include "app/model/app_model.h"
#include "core/diagnosis/palette_commands.h"
#include "core/model/window_state.h"
#include "shell/desktop/process_actions.h"

#include <QDialog>
#include <vector>

class QAction;
class QLineEdit;
class QListWidget;

namespace loadwarden {

// A field over a ranked list of what can be done: go to a tab, run a menu
// command, show an app or act on it. Arrows move, Return acts, Escape closes.
class CommandPalette : public QDialog {
    Q_OBJECT

public:
    // `menuCommands`: the window's commands the palette may run, when enabled.
    CommandPalette(AppModel& model, ProcessActions& actions, std::vector<QAction*> menuCommands,
                   QWidget* parent = nullptr);

    QLineEdit& field() { return *field_; }
    QListWidget& list() { return *list_; }
    // An empty field over every command as things are now.
    void openAfresh();

signals:
    void tabRequested(Tab tab);
    void groupRequested(const std::string& groupID);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rank();
    void actOnCurrent();
    void act(const PaletteEntry& entry);

    AppModel& model_;
    ProcessActions& actions_;
    std::vector<QAction*> menuCommands_;
    QLineEdit* field_;
    QListWidget* list_;
    std::vector<PaletteEntry> entries_; // every command, made when the palette opens
    std::vector<PaletteEntry> shown_;
};

} // namespace loadwarden

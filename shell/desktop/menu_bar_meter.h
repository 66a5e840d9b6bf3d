#pragma once

#include "app/model/app_model.h"

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#ifdef __APPLE__
#include "shell/desktop/status_item.h"
#endif

namespace loadwarden {

// The live meter beside the clock: the processor figure drawn into the icon,
// the whole meter text and what is paused or limited as its tooltip, and a menu to open the window, ask
// why the computer is slow, or quit. On macOS a status item instead, titled
// with the meter text.
// Where the desktop has no tray, the meter counts as off.
class MenuBarMeter : public QObject {
    Q_OBJECT

public:
    explicit MenuBarMeter(AppModel& model, QObject* parent = nullptr);

    static bool isAvailable();
    // Shown when the setting asks for it and a tray exists.
    bool isShown() const;

    // The processor figure on a plate that turns warm while an app runs hot.
    static QIcon drawIcon(const MenuBarState& state);
    // The meter's text, and under it what is held: "1 app paused".
    QString toolTip() const;
#ifndef __APPLE__
    QSystemTrayIcon& trayIcon() {
        return tray_;
    }
#endif

signals:
    void openRequested();
    void whyRequested();
    void quitRequested();

private:
    void follow();

    AppModel& model_;
    QMenu menu_;
#ifdef __APPLE__
    StatusItem statusItem_{menu_};
#else
    QSystemTrayIcon tray_{this};
#endif
};

} // namespace loadwarden

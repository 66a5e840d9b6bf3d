#pragma once

#include "app/model/app_model.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace loadwarden {

struct ModelSession {
    // Every tick reads the processes and publishes them, as for an open window.
    bool windowVisible = false;
    // This run's interval in place of the user's setting.
    std::optional<Seconds> interval;
    // Made for the model before its loop starts and kept until the session
    // ends; when it makes nothing, the session ends at once.
    std::function<std::unique_ptr<QObject>(AppModel&)> companion;
};

// Runs this machine's application model on an event loop of its own, calling
// afterTick after every tick until it returns false or SIGINT, SIGTERM or
// SIGHUP comes; then quits the way the window does: the loop stops,
// everything this copy paused or limited runs again, the history is saved.
// False when the companion could not be made.
bool runModelSession(const ModelSession& session,
                     const std::function<bool(const AppModel&)>& afterTick);

} // namespace loadwarden

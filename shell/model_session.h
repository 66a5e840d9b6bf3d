#pragma once

#include "app/model/app_model.h"

#include <functional>
#include <optional>

namespace loadwarden {

struct ModelSession {
    // Every tick reads the processes and publishes them, as for an open window.
    bool windowVisible = false;
    // This run's interval in place of the user's setting.
    std::optional<Seconds> interval;
};

// Runs this machine's application model on an event loop of its own, calling
// afterTick after every tick until it returns false or SIGINT, SIGTERM or
// SIGHUP comes; then quits the way the window does: the loop stops,
// everything this copy paused or limited runs again, the history is saved.
void runModelSession(const ModelSession& session,
                     const std::function<bool(const AppModel&)>& afterTick);

} // namespace loadwarden

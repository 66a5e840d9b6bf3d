#pragma once

#include "core/foundation/date.h"

namespace loadwarden {

// SIGINT, SIGTERM and SIGHUP taken out of their default of ending the
// program at once, so that a command holding processes stopped can continue
// them first. One at a time; they stay caught for the rest of the program.
class QuitSignals {
public:
    QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

    // Waits up to `seconds` for one of the signals; true when one came.
    bool wait(Seconds seconds);
    // Readable once one of the signals came, for an event loop to watch; -1
    // when they could not be caught.
    int descriptor() const;
};

} // namespace loadwarden

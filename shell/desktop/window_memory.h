#pragma once

#include "app/control/defaults_store.h"

namespace loadwarden {

class MainWindow;

// The window's layout in the user's defaults, beside the settings: its
// place and size, the tab, and each table's columns and sorting.
class WindowMemory {
public:
    explicit WindowMemory(DefaultsStore defaults = {}) : defaults_(std::move(defaults)) {}

    // Before the window is shown. Nothing stored, or a value that does not
    // decode, leaves the window as it was made; so does a table's record that
    // its header cannot read.
    void restore(MainWindow& window) const;
    // False when it could not be written.
    bool save(MainWindow& window) const;

private:
    DefaultsStore defaults_;
};

} // namespace loadwarden

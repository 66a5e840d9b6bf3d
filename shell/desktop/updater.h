#pragma once

#include <memory>

namespace loadwarden {

// macOS only, where the update framework is present: it checks on its own
// about once a day; a check the user starts reports either outcome.
class Updater {
public:
    Updater();
    ~Updater();
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;

    void checkForUpdates();
    bool isChecking() const;

private:
    struct Native;
    std::unique_ptr<Native> native_;
};

} // namespace loadwarden

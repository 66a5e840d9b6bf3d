#pragma once

#include <cstdint>
#include <memory>

namespace loadwarden {

// The desktop's own way to end an application: on macOS the workspace's
// terminate, which lets the app ask to save, and its force-terminate. Linux
// desktops have no such request, so every quit there goes through signals.
class Applications {
public:
    virtual ~Applications() = default;

    // Whether the process is a regular application (one with a Dock icon).
    virtual bool isRegularApp(std::int32_t pid) = 0;
    // Asks the application to quit.
    virtual void terminate(std::int32_t pid) = 0;
    // True when the desktop reports that it force-terminated the application.
    virtual bool forceTerminate(std::int32_t pid) = 0;
};

std::unique_ptr<Applications> systemApplications();

} // namespace loadwarden

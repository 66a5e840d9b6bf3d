#include "app/grouping/running_apps.h"

#import <AppKit/AppKit.h>

namespace loadwarden {

struct RunningApps::Platform {};

RunningApps::RunningApps() : platform_(std::make_unique<Platform>()) {}

RunningApps::~RunningApps() = default;

// The workspace knows the apps directly; the process list is not needed.
AppNames RunningApps::names(const std::vector<LiveProcess>&) {
    AppNames names;
    @autoreleasepool {
        for (NSRunningApplication* app in [[NSWorkspace sharedWorkspace] runningApplications]) {
            // Only regular apps, and only those with a process (others have pid -1).
            if (app.activationPolicy != NSApplicationActivationPolicyRegular ||
                app.processIdentifier <= 0) {
                continue;
            }
            // Null for a missing name, and for one UTF-8 cannot carry.
            const char* name = app.localizedName.UTF8String;
            names.emplace(static_cast<std::int32_t>(app.processIdentifier),
                          name != nullptr ? std::string(name) : std::string());
        }
    }
    return names;
}

} // namespace loadwarden

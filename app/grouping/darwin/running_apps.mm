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
            if (app.activationPolicy != NSApplicationActivationPolicyRegular) {
                continue;
            }
            NSString* name = app.localizedName;
            names.emplace(static_cast<std::int32_t>(app.processIdentifier),
                          name ? std::string(name.UTF8String) : std::string());
        }
    }
    return names;
}

} // namespace loadwarden

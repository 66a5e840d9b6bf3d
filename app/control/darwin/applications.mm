#include "app/control/applications.h"

#import <AppKit/AppKit.h>

namespace loadwarden {

namespace {

NSRunningApplication* applicationWith(std::int32_t pid) {
    return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
}

class WorkspaceApplications final : public Applications {
public:
    bool isRegularApp(std::int32_t pid) override {
        NSRunningApplication* app = applicationWith(pid);
        return app != nil && app.activationPolicy == NSApplicationActivationPolicyRegular;
    }
    void terminate(std::int32_t pid) override { [applicationWith(pid) terminate]; }
    bool forceTerminate(std::int32_t pid) override {
        NSRunningApplication* app = applicationWith(pid);
        return app != nil && [app forceTerminate];
    }
};

} // namespace

std::unique_ptr<Applications> systemApplications() {
    return std::make_unique<WorkspaceApplications>();
}

} // namespace loadwarden

#include "app/model/unresponsive_probe.h"

#include <cstring>
#include <dlfcn.h>

namespace loadwarden {

namespace {

// The window server's own verdict, from private entry points found at run
// time; when any of them is missing the probe is off and reports nobody.
struct WindowServer {
    using MainConnectionID = int (*)();
    using EventIsAppUnresponsive = bool (*)(int connection, const void* serialNumber);
    using GetProcessForPID = int (*)(int pid, void* serialNumber);

    MainConnectionID mainConnectionID = nullptr;
    EventIsAppUnresponsive isUnresponsive = nullptr;
    GetProcessForPID processForPID = nullptr;

    WindowServer() {
        void* graphics = dlopen(
            "/System/Library/Frameworks/CoreGraphics.framework/CoreGraphics", RTLD_NOW);
        void* services = dlopen(
            "/System/Library/Frameworks/ApplicationServices.framework/ApplicationServices",
            RTLD_NOW);
        if (!graphics || !services) {
            return;
        }
        auto* connection = dlsym(graphics, "CGSMainConnectionID");
        auto* unresponsive = dlsym(graphics, "CGSEventIsAppUnresponsive");
        auto* process = dlsym(services, "GetProcessForPID");
        if (!connection || !unresponsive || !process) {
            return;
        }
        mainConnectionID = reinterpret_cast<MainConnectionID>(connection);
        isUnresponsive = reinterpret_cast<EventIsAppUnresponsive>(unresponsive);
        processForPID = reinterpret_cast<GetProcessForPID>(process);
    }

    bool available() const { return mainConnectionID && isUnresponsive && processForPID; }
};

} // namespace

std::set<std::int32_t> unresponsivePids(const std::vector<std::int32_t>& pids) {
    static const WindowServer server;
    std::set<std::int32_t> stuck;
    if (!server.available()) {
        return stuck;
    }
    const int connection = server.mainConnectionID();
    for (const std::int32_t pid : pids) {
        unsigned char serialNumber[8];
        std::memset(serialNumber, 0, sizeof serialNumber);
        if (server.processForPID(pid, serialNumber) == 0 &&
            server.isUnresponsive(connection, serialNumber)) {
            stuck.insert(pid);
        }
    }
    return stuck;
}

} // namespace loadwarden

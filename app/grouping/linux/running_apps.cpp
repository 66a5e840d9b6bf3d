#include "app/grouping/running_apps.h"

#include "app/grouping/desktop_entry_catalog.h"

namespace loadwarden {

struct RunningApps::Platform {
    DesktopEntryCatalog catalog = DesktopEntryCatalog::forCurrentUser();
};

RunningApps::RunningApps() : platform_(std::make_unique<Platform>()) {}

RunningApps::~RunningApps() = default;

AppNames RunningApps::names(const std::vector<LiveProcess>& processes) {
    std::unordered_map<std::string, DesktopEntry> entries;
    for (const LiveProcess& process : processes) {
        const std::string& appID = process.record.appID;
        if (appID.empty() || entries.contains(appID)) {
            continue;
        }
        if (const auto& entry = platform_->catalog.find(appID)) {
            entries.emplace(appID, *entry);
        }
    }
    return DesktopEntries::appNames(processes, entries);
}

} // namespace loadwarden

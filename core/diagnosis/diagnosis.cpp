#include "core/diagnosis/diagnosis.h"

#include "core/control/process_policy.h"
#include "core/diagnosis/leak_detector.h"

#include <algorithm>

namespace loadwarden {

ExplainerApp Diagnosis::explainerApp(const ProcessGroup& group, bool notResponding,
                                     std::optional<double> leakGrowth) {
    return {.key = group.id,
            .name = group.name,
            .kind = group.kind,
            .cpuPercent = group.totalCPU(),
            .memoryBytes = group.totalMemory(),
            .energyWatts = group.totalEnergy(),
            .diskBytesPerSecond = group.totalDisk(),
            .helperCount = static_cast<int>(group.members.size()) - 1,
            .canQuit = ProcessPolicy::allows(ProcessAction::quit, group),
            .canPause = ProcessPolicy::allows(ProcessAction::pause, group),
            .notResponding = notResponding,
            .leakGrowth = leakGrowth,
            .processName = group.leader.record.name,
            .isSelf = group.isSelf};
}

SystemPicture Diagnosis::picture(const SystemSample& system,
                                 const std::vector<ProcessGroup>& groups,
                                 const std::set<std::string>& unresponsive,
                                 const AlertEngine& history, int heavyStartupItems) {
    SystemPicture picture{.system = system, .heavyStartupItems = heavyStartupItems};
    picture.apps.reserve(groups.size());
    for (const ProcessGroup& group : groups) {
        const auto leak = LeakDetector::leak(history.points(group.id));
        picture.apps.push_back(explainerApp(group, unresponsive.contains(group.id),
                                            leak ? std::optional(leak->growth) : std::nullopt));
    }
    return picture;
}

std::vector<ExplainerApp> Diagnosis::busiest(const std::vector<ExplainerApp>& apps,
                                             std::size_t count) {
    std::vector<ExplainerApp> others;
    std::copy_if(apps.begin(), apps.end(), std::back_inserter(others),
                 [](const ExplainerApp& app) { return !app.isSelf; });
    const auto harder = [](const ExplainerApp& a, const ExplainerApp& b) {
        return a.cpuPercent != b.cpuPercent ? a.cpuPercent > b.cpuPercent
                                            : a.memoryBytes > b.memoryBytes;
    };
    std::stable_sort(others.begin(), others.end(), harder);
    others.resize(std::min(count, others.size()));
    return others;
}

std::map<std::string, std::string>
Diagnosis::readOnlyReasons(const std::vector<ProcessGroup>& groups) {
    std::map<std::string, std::string> reasons;
    for (const ProcessGroup& group : groups) {
        if (const auto reason = ProcessPolicy::reason(group)) {
            reasons.emplace(group.id, *reason);
        }
    }
    return reasons;
}

} // namespace loadwarden

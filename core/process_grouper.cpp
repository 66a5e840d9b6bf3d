#include "core/process_grouper.h"

#include "core/protected_list.h"
#include "core/text_parsing.h"

#include <algorithm>
#include <string>

namespace loadwarden {

namespace {

constexpr std::string_view appKeyPrefix = "app:";
constexpr std::string_view memberKeyPrefix = "m:";
constexpr std::string_view bundleSuffix = ".app";
constexpr std::string_view mainExecutableFolder = "/Contents/MacOS/";

// How far up the parent chain a process still counts as a helper of its app.
constexpr int maximumAncestors = 32;

struct PendingGroup {
    std::optional<std::string_view> bundle;
    std::int32_t keyPID = 0;
    std::vector<const LiveProcess*> members; // input order
};

class KeyFinder {
public:
    explicit KeyFinder(const std::vector<LiveProcess>& processes) {
        indexByPID.reserve(processes.size());
        bundles.reserve(processes.size());
        for (std::size_t i = 0; i < processes.size(); ++i) {
            indexByPID.emplace(processes[i].record.pid, i);
            bundles.push_back(ProcessGrouper::bundleOf(processes[i].record));
        }
    }

    // The bundle whose app the process belongs to; absent for a lone process.
    std::optional<std::string_view> appBundle(const std::vector<LiveProcess>& processes,
                                              std::size_t index) const {
        if (bundles[index]) {
            return bundles[index];
        }
        const ProcessRecord& record = processes[index].record;
        // The system's word on who launched a helper beats its ownership.
        if (record.responsiblePID != record.pid && record.responsiblePID >= 2) {
            if (const auto responsible = indexByPID.find(record.responsiblePID);
                responsible != indexByPID.end() && bundles[responsible->second]) {
                return bundles[responsible->second];
            }
        }
        // Up the parent chain, only to an app of the same owner: a root-owned
        // helper stays out of the user's app and the other way round.
        std::int32_t ancestorPID = record.ppid;
        for (int examined = 0; ancestorPID >= 2 && examined < maximumAncestors; ++examined) {
            const auto ancestor = indexByPID.find(ancestorPID);
            if (ancestor == indexByPID.end()) {
                break;
            }
            const ProcessRecord& ancestorRecord = processes[ancestor->second].record;
            if (bundles[ancestor->second] && ancestorRecord.isOwn == record.isOwn) {
                return bundles[ancestor->second];
            }
            ancestorPID = ancestorRecord.ppid;
        }
        return std::nullopt;
    }

private:
    std::unordered_map<std::int32_t, std::size_t> indexByPID;
    std::vector<std::optional<std::string_view>> bundles;
};

bool isMainExecutable(const ProcessRecord& record, std::string_view bundle) {
    const std::string_view path = record.path;
    return path.starts_with(bundle) && path.substr(bundle.size()).starts_with(mainExecutableFolder);
}

// The lowest pid among the members that pass; null when none does.
template <typename Predicate>
const LiveProcess* lowestPID(const std::vector<const LiveProcess*>& members, Predicate passes) {
    const LiveProcess* lowest = nullptr;
    for (const LiveProcess* member : members) {
        if (passes(*member) && (!lowest || member->record.pid < lowest->record.pid)) {
            lowest = member;
        }
    }
    return lowest;
}

const LiveProcess& chooseLeader(const PendingGroup& pending, const AppNames& appNames) {
    if (const auto* app = lowestPID(pending.members, [&](const LiveProcess& member) {
            return appNames.contains(member.record.pid);
        })) {
        return *app;
    }
    if (pending.bundle) {
        if (const auto* main = lowestPID(pending.members, [&](const LiveProcess& member) {
                return isMainExecutable(member.record, *pending.bundle);
            })) {
            return *main;
        }
    }
    return *lowestPID(pending.members, [](const LiveProcess&) { return true; });
}

// "/Applications/Foo Bar.app" is called Foo Bar; a desktop-entry id stands
// for itself when the entry gave no name.
std::string bundleName(std::string_view bundle) {
    if (!bundle.ends_with(bundleSuffix)) {
        return std::string(bundle);
    }
    const std::size_t slash = bundle.rfind('/');
    const std::size_t start = slash == std::string_view::npos ? 0 : slash + 1;
    return std::string(bundle.substr(start, bundle.size() - bundleSuffix.size() - start));
}

GroupKind groupKind(bool hasRegularApp, bool leaderIsOwn, bool isProtected) {
    if (hasRegularApp) {
        return leaderIsOwn ? GroupKind::app : GroupKind::system;
    }
    // A protected program of the user's own still belongs to the system.
    return isProtected || !leaderIsOwn ? GroupKind::system : GroupKind::background;
}

ProcessGroup buildGroup(const PendingGroup& pending, const AppNames& appNames,
                        std::int32_t selfPID) {
    const LiveProcess& leader = chooseLeader(pending, appNames);
    ProcessGroup group;
    group.id = pending.bundle ? std::string(appKeyPrefix).append(*pending.bundle)
                              : "pid:" + std::to_string(pending.keyPID);
    if (pending.bundle) {
        group.bundlePath = std::string(*pending.bundle);
    }
    group.leader = leader;

    std::vector<const LiveProcess*> others;
    others.reserve(pending.members.size());
    bool hasRegularApp = false;
    for (const LiveProcess* member : pending.members) {
        hasRegularApp = hasRegularApp || appNames.contains(member->record.pid);
        group.isSelf = group.isSelf || member->record.pid == selfPID;
        if (member->record.pid != leader.record.pid) {
            others.push_back(member);
        }
    }
    std::sort(others.begin(), others.end(), [](const LiveProcess* a, const LiveProcess* b) {
        return a->record.pid < b->record.pid;
    });
    group.members.reserve(others.size() + 1);
    group.members.push_back(leader);
    for (const LiveProcess* member : others) {
        group.members.push_back(*member);
    }

    if (const auto appName = appNames.find(leader.record.pid); appName != appNames.end()) {
        group.name = appName->second;
    } else if (pending.bundle) {
        group.name = bundleName(*pending.bundle);
    } else {
        group.name = leader.record.name;
    }
    group.isProtected = ProtectedList::isProtected(leader.record.name, leader.record.path) ||
                        ProtectedList::isProtected(group.name, pending.bundle.value_or(""));
    group.kind = groupKind(hasRegularApp, leader.record.isOwn, group.isProtected);
    return group;
}

} // namespace

std::optional<std::string_view> ProcessGrouper::bundlePath(std::string_view executablePath) {
    if (const std::size_t found = executablePath.find(".app/"); found != std::string_view::npos) {
        return executablePath.substr(0, found + bundleSuffix.size());
    }
    if (executablePath.ends_with(bundleSuffix)) {
        return executablePath;
    }
    return std::nullopt;
}

std::optional<std::string_view> ProcessGrouper::bundleOf(const ProcessRecord& record) {
    if (!record.appID.empty()) {
        return record.appID;
    }
    return bundlePath(record.path);
}

std::vector<ProcessGroup> ProcessGrouper::group(const std::vector<LiveProcess>& processes,
                                                const AppNames& appNames, std::int32_t selfPID) {
    const KeyFinder keys(processes);
    std::vector<PendingGroup> pending;
    std::unordered_map<std::string_view, std::size_t> pendingByBundle;
    std::unordered_map<std::int32_t, std::size_t> pendingByPID;
    for (std::size_t i = 0; i < processes.size(); ++i) {
        const auto bundle = keys.appBundle(processes, i);
        const std::int32_t pid = processes[i].record.pid;
        const std::size_t next = pending.size();
        const std::size_t slot = bundle ? pendingByBundle.try_emplace(*bundle, next).first->second
                                        : pendingByPID.try_emplace(pid, next).first->second;
        if (slot == next) {
            pending.push_back(PendingGroup{.bundle = bundle, .keyPID = pid});
        }
        pending[slot].members.push_back(&processes[i]);
    }

    std::vector<ProcessGroup> groups;
    groups.reserve(pending.size());
    for (const PendingGroup& each : pending) {
        groups.push_back(buildGroup(each, appNames, selfPID));
    }
    return groups;
}

std::optional<ProcessGroup>
ProcessGrouper::memberGroup(std::int32_t pid, const ProcessGroup& parent, std::int32_t selfPID) {
    const auto member =
        std::find_if(parent.members.begin(), parent.members.end(),
                     [pid](const LiveProcess& each) { return each.record.pid == pid; });
    if (member == parent.members.end()) {
        return std::nullopt;
    }
    const ProcessRecord& record = member->record;
    ProcessGroup row;
    row.id = std::string(memberKeyPrefix) + std::to_string(pid);
    row.name = record.name;
    row.leader = *member;
    row.members = {*member};
    row.isProtected = parent.isProtected || ProtectedList::isProtected(record.name, record.path);
    row.isSelf = parent.isSelf || pid == selfPID;
    if (!record.isOwn || parent.kind == GroupKind::system) {
        row.kind = GroupKind::system;
    } else if (parent.kind == GroupKind::app && parent.leader.record.pid == pid) {
        row.kind = GroupKind::app;
    } else {
        row.kind = GroupKind::background;
    }
    return row;
}

std::optional<ResolvedSelection> ProcessGrouper::resolve(std::string_view key,
                                                         const std::vector<ProcessGroup>& groups,
                                                         std::int32_t selfPID) {
    for (const ProcessGroup& group : groups) {
        if (group.id == key) {
            return ResolvedSelection{.row = group};
        }
    }
    if (!key.starts_with(memberKeyPrefix)) {
        return std::nullopt;
    }
    const auto pid = parseInteger<std::int32_t>(key.substr(memberKeyPrefix.size()));
    if (!pid) {
        return std::nullopt;
    }
    for (const ProcessGroup& group : groups) {
        if (auto row = memberGroup(*pid, group, selfPID)) {
            return ResolvedSelection{.row = std::move(*row), .parent = group};
        }
    }
    return std::nullopt;
}

} // namespace loadwarden

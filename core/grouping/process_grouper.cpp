#include "core/grouping/process_grouper.h"

#include "core/control/protected_list.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <span>
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
    std::size_t first = 0; // where its members start in the list of all members
    std::size_t count = 0;
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
using Members = std::span<const LiveProcess*>;

template <typename Predicate>
const LiveProcess* lowestPID(Members members, Predicate passes) {
    const LiveProcess* lowest = nullptr;
    for (const LiveProcess* member : members) {
        if (passes(*member) && (!lowest || member->record.pid < lowest->record.pid)) {
            lowest = member;
        }
    }
    return lowest;
}

struct Leader {
    const LiveProcess& process;
    bool isRegularApp; // so some member is one: the leader is the first choice among them
};

// The lowest pid among the regular apps; else among the bundle's main
// executables; else among all members.
Leader chooseLeader(Members members, std::optional<std::string_view> bundle,
                    const AppNames& appNames) {
    if (const auto* app = lowestPID(members, [&](const LiveProcess& member) {
            return appNames.contains(member.record.pid);
        })) {
        return {*app, true};
    }
    if (bundle) {
        if (const auto* main = lowestPID(members, [&](const LiveProcess& member) {
                return isMainExecutable(member.record, *bundle);
            })) {
            return {*main, false};
        }
    }
    return {*lowestPID(members, [](const LiveProcess&) { return true; }), false};
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

// Fills a group in place: groups are large, and there are thousands.
void buildGroup(ProcessGroup& group, const PendingGroup& pending, Members members,
                const AppNames& appNames, std::int32_t selfPID) {
    const auto [leader, isRegularApp] = chooseLeader(members, pending.bundle, appNames);
    group.id = pending.bundle ? std::string(appKeyPrefix).append(*pending.bundle)
                              : "pid:" + std::to_string(pending.keyPID);
    if (pending.bundle) {
        group.bundlePath = std::string(*pending.bundle);
    }
    group.leader = leader;

    std::sort(members.begin(), members.end(), [](const LiveProcess* a, const LiveProcess* b) {
        return a->record.pid < b->record.pid;
    });
    group.members.reserve(members.size());
    group.members.push_back(leader);
    for (const LiveProcess* member : members) {
        group.isSelf = group.isSelf || member->record.pid == selfPID;
        if (member->record.pid != leader.record.pid) {
            group.members.push_back(*member);
        }
    }

    if (isRegularApp) {
        group.name = appNames.at(leader.record.pid);
    } else if (pending.bundle) {
        group.name = bundleName(*pending.bundle);
    } else {
        group.name = leader.record.name;
    }
    group.isProtected = leader.record.isSystemService ||
                        ProtectedList::isProtected(leader.record.name, leader.record.path) ||
                        ProtectedList::isProtected(group.name, pending.bundle.value_or(""));
    group.kind = groupKind(isRegularApp, leader.record.isOwn, group.isProtected);
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
    std::vector<std::size_t> pendingOf(processes.size());
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
        ++pending[slot].count;
        pendingOf[i] = slot;
    }

    // The members of all groups side by side, each group's in input order.
    for (std::size_t slot = 1; slot < pending.size(); ++slot) {
        pending[slot].first = pending[slot - 1].first + pending[slot - 1].count;
    }
    std::vector<const LiveProcess*> members(processes.size());
    std::vector<std::size_t> filled(pending.size());
    for (std::size_t i = 0; i < processes.size(); ++i) {
        const std::size_t slot = pendingOf[i];
        members[pending[slot].first + filled[slot]++] = &processes[i];
    }

    std::vector<ProcessGroup> groups;
    groups.reserve(pending.size());
    for (const PendingGroup& each : pending) {
        buildGroup(groups.emplace_back(), each, Members(members).subspan(each.first, each.count),
                   appNames, selfPID);
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
    row.isProtected = parent.isProtected || record.isSystemService ||
                      ProtectedList::isProtected(record.name, record.path);
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

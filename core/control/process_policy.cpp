#include "core/control/process_policy.h"

#include "core/control/protected_list.h"
#include "core/text/platform_wording.h"

#include <algorithm>

namespace loadwarden {

namespace {

constexpr std::string_view protectedPart =
    onThisPlatform("Protected: part of macOS", "Protected: part of the system");
constexpr std::string_view systemReadOnly = onThisPlatform("macOS, read-only", "System, read-only");

// Pids below 2 are the kernel's and the first process's; signalling them
// would reach far more than one group.
bool isOutOfBounds(const ProcessGroup& group) {
    const ProcessRecord& leader = group.leader.record;
    return !leader.isOwn || leader.pid < 2 || group.kind == GroupKind::system ||
           group.isProtected || group.isSelf || ProcessPolicy::hasEnded(group);
}

} // namespace

bool ProcessPolicy::hasEnded(const ProcessGroup& group) {
    return std::ranges::all_of(group.members, [](const LiveProcess& member) {
        return member.record.state == RunState::zombie;
    });
}

bool ProcessPolicy::allows(ProcessAction action, const ProcessGroup& group) {
    if (isOutOfBounds(group)) {
        return false;
    }
    switch (action) {
    case ProcessAction::quit:
    case ProcessAction::forceQuit:
        return true;
    case ProcessAction::pause:
    case ProcessAction::limit:
        return !group.isPaused();
    case ProcessAction::resume:
        return group.isPaused();
    }
    return false;
}

bool ProcessPolicy::offers(ProcessAction action, const ProcessGroup& group, bool isLimited) {
    if (!isLimited) {
        return allows(action, group);
    }
    return !isOutOfBounds(group) && action != ProcessAction::resume;
}

std::vector<std::int32_t> ProcessPolicy::signalTargets(const ProcessGroup& group,
                                                       std::int32_t myPID) {
    std::vector<std::int32_t> targets;
    if (isOutOfBounds(group)) {
        return targets;
    }
    for (const auto& member : group.members) {
        const ProcessRecord& record = member.record;
        if (record.isOwn && record.pid >= 2 && record.pid != myPID && !record.isSystemService &&
            !ProtectedList::isProtectedName(record.name)) {
            targets.push_back(record.pid);
        }
    }
    return targets;
}

std::optional<std::string_view> ProcessPolicy::reason(const ProcessGroup& group) {
    if (group.isSelf) {
        return "This app";
    }
    if (group.kind == GroupKind::system) {
        return group.leader.record.isOwn ? protectedPart : systemReadOnly;
    }
    if (group.isProtected) {
        return protectedPart;
    }
    return std::nullopt;
}

} // namespace loadwarden

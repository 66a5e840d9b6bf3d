#pragma once

#include "core/control/process_action.h"
#include "core/grouping/process_group.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace loadwarden {

// The one place that decides what the user may do to a group: never to this
// program, to the operating system or to another user's processes.
namespace ProcessPolicy {

// Every member is a zombie: no signal reaches it, and only its parent can
// make it go.
bool hasEnded(const ProcessGroup& group);

// May the action be carried out on the group now.
bool allows(ProcessAction action, const ProcessGroup& group);

// Should the action be an enabled menu entry. A group under a CPU limit is
// stopped and continued many times a second, so its run states say nothing:
// everything but resume is offered (the limit entry then removes the limit).
bool offers(ProcessAction action, const ProcessGroup& group, bool isLimited);

// The pids a group-wide end, pause, resume or limit touches, in member order:
// the user's own members, never pid 0 or 1, this program, a protected name
// or a service of the system.
std::vector<std::int32_t> signalTargets(const ProcessGroup& group, std::int32_t myPID);

// Why nothing can be done to the group, in one line; absent when actions are
// available.
std::optional<std::string_view> reason(const ProcessGroup& group);

} // namespace ProcessPolicy

} // namespace loadwarden

#include "app/control/reopening.h"

namespace loadwarden {

// An app is opened again by its bundle; a tool by its executable, without
// the arguments it was given, which macOS does not hand out.
std::optional<Reopening> reopeningOf(const ProcessGroup& group) {
    if (group.bundlePath && group.bundlePath->ends_with(".app")) {
        return Reopening{.program = "/usr/bin/open", .arguments = {*group.bundlePath}};
    }
    if (group.leader.record.path.empty()) {
        return std::nullopt;
    }
    return Reopening{.program = group.leader.record.path};
}

} // namespace loadwarden

#pragma once

#include "app/runner/spawn.h"
#include "core/measurement/process_record.h"
#include "core/startup/startup_item.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// What this computer starts at login or on demand, and the user's switch
// for what is theirs. Both read the disk or run a tool: call them off the
// main thread.
class StartupCatalog {
public:
    virtual ~StartupCatalog() = default;

    // `processes`: the running ones, where login items are found.
    virtual std::vector<StartupItem> items(const std::vector<LiveProcess>& processes) = 0;
    // Whether the user may switch the item without an administrator; cheap,
    // read nothing.
    virtual bool canChange(const StartupItem& item) const = 0;
    // Nothing once switched; else what to tell the user.
    virtual std::optional<std::string> setEnabled(const StartupItem& item, bool enabled) = 0;
};

// The catalog of the system this program was built for.
std::unique_ptr<StartupCatalog> makeStartupCatalog();

// What to tell the user when the tool that switches an item (`tool`: its
// name) did not start or exited with other than 0; nothing otherwise.
std::optional<std::string> switchingToolError(std::string_view tool,
                                              const std::optional<Spawn::Result>& result);

} // namespace loadwarden

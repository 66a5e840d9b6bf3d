#include "app/startup/startup_catalog.h"

#include "core/startup/startup_text.h"

namespace loadwarden {

std::optional<std::string> switchingToolError(std::string_view tool,
                                              const std::optional<Spawn::Result>& result) {
    if (!result) {
        return StartupText::toolDidNotStart(tool);
    }
    if (result->exitCode != 0) {
        return StartupText::toolFailed(tool, result->exitCode.value_or(-1));
    }
    return std::nullopt;
}

} // namespace loadwarden

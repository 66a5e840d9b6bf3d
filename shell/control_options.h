#pragma once

#include "core/control/process_action.h"
#include "core/foundation/date.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

// The commands that act on processes.
enum class ControlVerb { quit, end, forceQuit, pause, resume, limit };

struct ControlOptions {
    bool help = false;
    std::string target;             // a pid, a group id or an app name
    std::optional<double> percent;  // limit: a share of one core
    std::optional<Seconds> holdFor; // pause and limit: how long to hold
    bool yes = false;               // force-quit without asking
};

std::string_view controlCommandName(ControlVerb verb);
std::string controlUsage(ControlVerb verb);
ProcessAction controlAction(ControlVerb verb);

std::variant<ControlOptions, std::string>
parseControlOptions(ControlVerb verb, const std::vector<std::string>& arguments);

} // namespace loadwarden

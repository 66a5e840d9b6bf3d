#pragma once

#include "core/diagnosis/palette.h"
#include "core/grouping/process_group.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// The palette's own commands: going to a tab, and for each running app
// showing it and the actions the process policy offers on it.
namespace PaletteCommands {

enum class Verb { goTo, show, pause, resume, removeLimit, quit, forceQuit, runMenuCommand };

// What an entry asks for, read back from its id when the user picks it.
struct Command {
    Verb verb = Verb::goTo;
    std::string subject; // a tab's raw value, a group's id or a menu command's title

    bool operator==(const Command&) const = default;
};

// `limits`: the groups under a CPU limit, by id; `menuCommands`: the titles
// of the window's menu commands that can be run now. Busier apps weigh
// more, so they come first among equals.
std::vector<PaletteEntry> entries(const std::vector<ProcessGroup>& groups,
                                  const std::map<std::string, double>& limits,
                                  const std::vector<std::string>& menuCommands);

// Absent for an id that none of these commands made.
std::optional<Command> command(const PaletteEntry& entry);

// What a command's risk is called where the palette lists it.
std::string_view riskText(PaletteRisk risk);

} // namespace PaletteCommands

} // namespace loadwarden

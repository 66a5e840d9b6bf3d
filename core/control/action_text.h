#pragma once

#include "core/grouping/process_group.h"

#include <optional>
#include <string>

namespace loadwarden {

// Every sentence around the actions on processes, so the menus, the
// confirmations and the command line say the same thing.
namespace ActionText {

// "Quit {name}" for an app, "End {name}" for anything else.
std::string quitTitle(const ProcessGroup& group);
// "Pause {name}", "Resume {name}", "Limit CPU of {name}", "Remove Limit on {name}".
std::string pauseTitle(const ProcessGroup& group);
std::string resumeTitle(const ProcessGroup& group);
std::string limitTitle(const ProcessGroup& group, bool isLimited);
// What a limited group shows: "Limited 50%".
std::string limitedMark(double percent);
// What a paused app or process shows.
std::string pausedMark();
// What a row shows beside its name when it is held: limited (its app's
// limit, which stops it in turn) before paused; absent when it runs freely.
std::optional<std::string> heldMark(const ProcessGroup& group, std::optional<double> limit);
// What is held, for the meter: "2 apps paused · 1 limited"; empty when nothing is.
std::string heldSummary(std::size_t paused, std::size_t limited);

// What quitting or ending it does, and what forcing it costs.
std::string quitConfirmation(const ProcessGroup& group);
std::string forceQuitConfirmation(const ProcessGroup& group);

// Above the actions of a member row: "This process only: {name}".
std::string singleProcessHeader(const ProcessGroup& group);

std::string pauseHelp();
std::string resumeHelp();
// The name cell's note on the program itself.
std::string selfHelp();

// Why the process menu offers nothing: another user's process, or the
// policy's one-line reason; none when something is offered.
std::optional<std::string> menuRefusal(const ProcessGroup& group);

} // namespace ActionText

} // namespace loadwarden

#include "shell/control_options.h"

#include "core/text/text_parsing.h"
#include "shell/command_line.h"

#include <cmath>

namespace loadwarden {

namespace {

struct ControlCommand {
    std::string_view name;
    ProcessAction action;
    std::string_view synopsis;
    std::string_view description;
};

// In the order of ControlVerb.
constexpr ControlCommand controlCommands[] = {
    {"quit", ProcessAction::quit, "quit TARGET", "Asks an app to quit, so it can save first.\n"},
    {"end", ProcessAction::quit, "end TARGET",
     "Asks a process to stop, so it can clean up first.\n"},
    {"force-quit", ProcessAction::forceQuit, "force-quit TARGET [--yes]",
     "Stops an app or process at once; anything it hasn't saved is lost.\n"
     "It asks first on a terminal; elsewhere --yes confirms.\n"},
    {"pause", ProcessAction::pause, "pause TARGET [--for DURATION]",
     "Stops an app using the processor while this command runs: until\n"
     "DURATION (such as 90, 5m or 1h) has passed, or it is interrupted.\n"
     "Then it lets it run again.\n"},
    {"resume", ProcessAction::resume, "resume TARGET",
     "Lets a paused app use the processor freely again.\n"},
    {"limit", ProcessAction::limit, "limit TARGET PERCENT [--for DURATION]",
     "Keeps an app near PERCENT of one core (100 is a whole core) by pausing\n"
     "it many times a second, while this command runs: until DURATION (such\n"
     "as 90, 5m or 1h) has passed, or it is interrupted.\n"},
};

const ControlCommand& commandOf(ControlVerb verb) {
    return controlCommands[static_cast<std::size_t>(verb)];
}

} // namespace

std::string_view controlCommandName(ControlVerb verb) {
    return commandOf(verb).name;
}

ProcessAction controlAction(ControlVerb verb) {
    return commandOf(verb).action;
}

std::string controlUsage(ControlVerb verb) {
    const ControlCommand& command = commandOf(verb);
    return "usage: loadwarden " + std::string(command.synopsis) + "\n\n" +
           std::string(command.description) +
           "\nTARGET is a pid, a group id such as app:/Applications/Mail.app or pid:4242,\n"
           "or an app's name, in any case.\n";
}

std::variant<ControlOptions, std::string>
parseControlOptions(ControlVerb verb, const std::vector<std::string>& arguments) {
    ControlOptions options;
    std::string percent;
    OptionParser parser;
    parser.help(options.help).positional(options.target, "a TARGET: a pid, a group id or a name");
    if (verb == ControlVerb::limit) {
        parser.positional(percent, "a PERCENT of one core, such as 25 or 150");
    }
    if (verb == ControlVerb::pause || verb == ControlVerb::limit) {
        parser.duration("--for", options.holdFor);
    }
    if (verb == ControlVerb::forceQuit) {
        parser.flag("--yes", options.yes);
    }
    if (auto message = parser.parse(arguments)) {
        return *message;
    }
    if (verb == ControlVerb::limit && !options.help) {
        std::string_view number = percent;
        if (number.ends_with('%')) {
            number.remove_suffix(1);
        }
        const auto value = parseDecimal(number);
        if (!value || !(*value > 0.0) || !std::isfinite(*value)) {
            return "PERCENT takes a share of one core above 0, such as 25 or 150, not '" + percent +
                   "'";
        }
        options.percent = *value;
    }
    return options;
}

} // namespace loadwarden

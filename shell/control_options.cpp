#include "shell/control_options.h"

#include "core/text/text_parsing.h"
#include "shell/command_line.h"

#include <cmath>

namespace loadwarden {

namespace {

constexpr std::string_view targetHelp =
    "TARGET is a pid, a group id such as app:/Applications/Mail.app or pid:4242,\n"
    "or an app's name, in any case.\n";

} // namespace

std::string_view controlCommandName(ControlVerb verb) {
    switch (verb) {
    case ControlVerb::quit:
        return "quit";
    case ControlVerb::end:
        return "end";
    case ControlVerb::forceQuit:
        return "force-quit";
    case ControlVerb::pause:
        return "pause";
    case ControlVerb::resume:
        return "resume";
    case ControlVerb::limit:
        return "limit";
    }
    return "";
}

ProcessAction controlAction(ControlVerb verb) {
    switch (verb) {
    case ControlVerb::quit:
    case ControlVerb::end:
        return ProcessAction::quit;
    case ControlVerb::forceQuit:
        return ProcessAction::forceQuit;
    case ControlVerb::pause:
        return ProcessAction::pause;
    case ControlVerb::resume:
        return ProcessAction::resume;
    case ControlVerb::limit:
        return ProcessAction::limit;
    }
    return ProcessAction::quit;
}

std::string_view controlUsage(ControlVerb verb) {
    static const std::string quit = std::string("usage: loadwarden quit TARGET\n"
                                                "\n"
                                                "Asks an app to quit, so it can save first.\n") +
                                    std::string(targetHelp);
    static const std::string end =
        std::string("usage: loadwarden end TARGET\n"
                    "\n"
                    "Asks a process to stop, so it can clean up first.\n") +
        std::string(targetHelp);
    static const std::string forceQuit =
        std::string("usage: loadwarden force-quit TARGET [--yes]\n"
                    "\n"
                    "Stops an app or process at once; anything it hasn't saved is lost.\n"
                    "It asks first on a terminal; elsewhere --yes confirms.\n") +
        std::string(targetHelp);
    static const std::string pause =
        std::string("usage: loadwarden pause TARGET [--for DURATION]\n"
                    "\n"
                    "Stops an app using the processor while this command runs: until\n"
                    "DURATION (such as 90, 5m or 1h) has passed, or it is interrupted.\n"
                    "Then it lets it run again.\n") +
        std::string(targetHelp);
    static const std::string resume =
        std::string("usage: loadwarden resume TARGET\n"
                    "\n"
                    "Lets a paused app use the processor freely again.\n") +
        std::string(targetHelp);
    static const std::string limit =
        std::string("usage: loadwarden limit TARGET PERCENT [--for DURATION]\n"
                    "\n"
                    "Keeps an app near PERCENT of one core (100 is a whole core) by pausing\n"
                    "it many times a second, while this command runs: until DURATION (such\n"
                    "as 90, 5m or 1h) has passed, or it is interrupted.\n") +
        std::string(targetHelp);
    switch (verb) {
    case ControlVerb::quit:
        return quit;
    case ControlVerb::end:
        return end;
    case ControlVerb::forceQuit:
        return forceQuit;
    case ControlVerb::pause:
        return pause;
    case ControlVerb::resume:
        return resume;
    case ControlVerb::limit:
        return limit;
    }
    return "";
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

#include "shell/startup_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<StartupOptions, std::string>
parseStartupOptions(const std::vector<std::string>& arguments) {
    StartupOptions options;
    // A switch is "on NAME" or "off NAME"; anything else is read as options.
    if (!arguments.empty() && (arguments.front() == "on" || arguments.front() == "off")) {
        options.turnOn = arguments.front() == "on";
        return OptionParser()
            .help(options.help)
            .positional(options.target, "the name of a startup item")
            .parse({arguments.begin() + 1, arguments.end()}, options);
    }
    return OptionParser().help(options.help).flag("--json", options.json).parse(arguments, options);
}

} // namespace loadwarden

#include "shell/apps_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<AppsOptions, std::string> parseAppsOptions(const std::vector<std::string>& arguments) {
    AppsOptions options;
    return OptionParser()
        .help(options.help)
        .flag("--json", options.json)
        .flag("--ascending", options.ascending)
        .choice("--sort", options.column, "a column")
        .text("--search", options.search, "the text to look for")
        .seconds("--interval", options.interval, AppsOptions::longestInterval)
        .parse(arguments, options);
}

} // namespace loadwarden

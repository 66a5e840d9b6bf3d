#include "shell/watch_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<WatchOptions, std::string>
parseWatchOptions(const std::vector<std::string>& arguments) {
    WatchOptions options;
    return OptionParser()
        .help(options.help)
        .seconds("--interval", options.interval, WatchOptions::longestInterval)
        .parse(arguments, options);
}

} // namespace loadwarden

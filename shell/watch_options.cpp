#include "shell/watch_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<WatchOptions, std::string>
parseWatchOptions(const std::vector<std::string>& arguments) {
    WatchOptions options;
    Seconds interval = 0.0;
    auto parsed = OptionParser()
                      .help(options.help)
                      .seconds("--interval", interval, WatchOptions::longestInterval)
                      .parse(arguments, options);
    if (auto* watch = std::get_if<WatchOptions>(&parsed); watch && interval > 0.0) {
        watch->interval = interval;
    }
    return parsed;
}

} // namespace loadwarden

#include "shell/snapshot_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<SnapshotOptions, std::string>
parseSnapshotOptions(const std::vector<std::string>& arguments) {
    SnapshotOptions options;
    return OptionParser()
        .help(options.help)
        .flag("--json", options.json)
        .seconds("--interval", options.interval, SnapshotOptions::longestInterval)
        .count("--ticks", options.ticks)
        .parse(arguments, options);
}

} // namespace loadwarden

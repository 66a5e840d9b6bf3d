#include "shell/snapshot_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<SnapshotOptions, std::string>
parseSnapshotOptions(const std::vector<std::string>& arguments) {
    SnapshotOptions options;
    ArgumentList list(arguments);
    while (!list.atEnd()) {
        const std::string option = list.take();
        const bool flag = option == "--help" || option == "-h" || option == "--json";
        if (flag && list.hasAttachedValue()) {
            return option + " takes no value";
        }
        if (option == "--help" || option == "-h") {
            options.help = true;
        } else if (option == "--json") {
            options.json = true;
        } else if (option == "--interval") {
            const auto value = list.takeValue();
            if (!value) {
                return "--interval needs a number of seconds";
            }
            const auto seconds = parsePositiveSeconds(*value);
            if (!seconds || *seconds > SnapshotOptions::longestInterval) {
                return "--interval takes seconds above 0 and up to 86400, not '" + *value + "'";
            }
            options.interval = *seconds;
        } else if (option == "--ticks") {
            const auto value = list.takeValue();
            if (!value) {
                return "--ticks needs a number";
            }
            const auto ticks = parsePositiveCount(*value);
            if (!ticks) {
                return "--ticks takes a whole number of at least 1, not '" + *value + "'";
            }
            options.ticks = *ticks;
        } else if (option.rfind('-', 0) == 0) {
            return "unknown option '" + option + "'";
        } else {
            return "unexpected argument '" + option + "'";
        }
    }
    return options;
}

} // namespace loadwarden

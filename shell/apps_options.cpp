#include "shell/apps_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<AppsOptions, std::string> parseAppsOptions(const std::vector<std::string>& arguments) {
    AppsOptions options;
    ArgumentList list(arguments);
    while (!list.atEnd()) {
        const std::string option = list.take();
        const bool flag =
            option == "--help" || option == "-h" || option == "--json" || option == "--ascending";
        if (flag && list.hasAttachedValue()) {
            return option + " takes no value";
        }
        if (option == "--help" || option == "-h") {
            options.help = true;
        } else if (option == "--json") {
            options.json = true;
        } else if (option == "--ascending") {
            options.ascending = true;
        } else if (option == "--sort") {
            const auto value = list.takeValue();
            if (!value) {
                return "--sort needs a column: name, cpu, memory, energy, disk or network";
            }
            const auto column = fromRawValue<ProcessColumn>(*value);
            if (!column) {
                return "--sort takes name, cpu, memory, energy, disk or network, not '" + *value +
                       "'";
            }
            options.column = *column;
        } else if (option == "--search") {
            const auto value = list.takeValue();
            if (!value) {
                return "--search needs the text to look for";
            }
            options.search = *value;
        } else if (option == "--interval") {
            const auto value = list.takeValue();
            if (!value) {
                return "--interval needs a number of seconds";
            }
            const auto seconds = parsePositiveSeconds(*value);
            if (!seconds || *seconds > AppsOptions::longestInterval) {
                return "--interval takes seconds above 0 and up to 60, not '" + *value + "'";
            }
            options.interval = *seconds;
        } else if (option.rfind('-', 0) == 0) {
            return "unknown option '" + option + "'";
        } else {
            return "unexpected argument '" + option + "'";
        }
    }
    return options;
}

} // namespace loadwarden

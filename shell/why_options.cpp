#include "shell/why_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<WhyOptions, std::string> parseWhyOptions(const std::vector<std::string>& arguments) {
    WhyOptions options;
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
        } else if (option == "--max") {
            const auto value = list.takeValue();
            if (!value) {
                return "--max needs a number";
            }
            const auto count = parsePositiveCount(*value);
            if (!count) {
                return "--max takes a whole number of at least 1, not '" + *value + "'";
            }
            options.maxCount = *count;
        } else if (option == "--interval") {
            const auto value = list.takeValue();
            if (!value) {
                return "--interval needs a number of seconds";
            }
            const auto seconds = parsePositiveSeconds(*value);
            if (!seconds || *seconds > WhyOptions::longestInterval) {
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

#include "shell/why_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<WhyOptions, std::string> parseWhyOptions(const std::vector<std::string>& arguments) {
    WhyOptions options;
    return OptionParser()
        .help(options.help)
        .flag("--json", options.json)
        .count("--max", options.maxCount)
        .seconds("--interval", options.interval, WhyOptions::longestInterval)
        .parse(arguments, options);
}

} // namespace loadwarden

#include "shell/history_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<HistoryOptions, std::string>
parseHistoryOptions(const std::vector<std::string>& arguments) {
    HistoryOptions options;
    return OptionParser()
        .help(options.help)
        .flag("--json", options.json)
        .choice("--days", options.range, "a number of days")
        .parse(arguments, options);
}

} // namespace loadwarden

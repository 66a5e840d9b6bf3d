#include "shell/info_options.h"

#include "core/text/text_parsing.h"
#include "shell/command_line.h"

namespace loadwarden {

std::variant<InfoOptions, std::string> parseInfoOptions(const std::vector<std::string>& arguments) {
    InfoOptions options;
    std::string pid;
    auto parsed = OptionParser()
                      .help(options.help)
                      .flag("--json", options.json)
                      .positional(pid, "the pid of a process")
                      .parse(arguments, options);
    auto* info = std::get_if<InfoOptions>(&parsed);
    if (!info || info->help) {
        return parsed;
    }
    const auto number = parseInteger<std::int32_t>(pid);
    if (!number || *number < 1) {
        return "PID takes a process id such as 4242, not '" + pid + "'";
    }
    info->pid = *number;
    return parsed;
}

} // namespace loadwarden

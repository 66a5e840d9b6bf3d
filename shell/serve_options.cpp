#include "shell/serve_options.h"

#include "shell/command_line.h"

namespace loadwarden {

std::variant<ServeOptions, std::string>
parseServeOptions(const std::vector<std::string>& arguments) {
    ServeOptions options;
    std::string listen;
    const auto parsed = OptionParser()
                            .help(options.help)
                            .text("--listen", listen, "ADDRESS:PORT")
                            .count("--apps", options.apps)
                            .seconds("--interval", options.interval, ServeOptions::longestInterval)
                            .parse(arguments, options);
    if (std::holds_alternative<std::string>(parsed) || listen.empty()) {
        return parsed;
    }
    auto address = parseListenAddress(listen);
    if (const auto* message = std::get_if<std::string>(&address)) {
        return "--listen " + *message;
    }
    options.listen = std::get<ListenAddress>(std::move(address));
    return options;
}

} // namespace loadwarden

#include "core/foundation/program.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/control_options.h"

#include <algorithm>
#include <ostream>

namespace loadwarden {

namespace {

template <ControlVerb verb>
int control(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    return runControlCommand(verb, arguments, out, err);
}

} // namespace

const std::vector<Command>& commands() {
    static const std::vector<Command> table{
        {"snapshot", "the processes and system figures of this moment", runSnapshotCommand},
        {"why", "what is slowing things down, worst first, with fixes", runWhyCommand},
        {"apps", "the processes as apps with their helpers, by section", runAppsCommand},
        {"info", "one process: what it uses, who made it, its open files and ports",
         runInfoCommand},
        {"history", "what each app used today or over 7 or 30 days", runHistoryCommand},
        {"startup", "what starts at login, and turning your own items on or off",
         runStartupCommand},
        {"watch", "keep watch without a window: history, alerts, the meter", runWatchCommand},
        {"serve", "keep watch and answer Prometheus with the figures of every app",
         runServeCommand},
        {"quit", "ask an app to quit, so it can save first", control<ControlVerb::quit>},
        {"end", "ask a process to stop, so it can clean up first", control<ControlVerb::end>},
        {"force-quit", "stop an app or process at once", control<ControlVerb::forceQuit>},
        {"pause", "stop an app using the processor while this runs", control<ControlVerb::pause>},
        {"resume", "let a paused app run again", control<ControlVerb::resume>},
        {"limit", "hold an app near a share of one core while this runs",
         control<ControlVerb::limit>},
    };
    return table;
}

namespace {

void printUsage(std::ostream& stream) {
    stream << "usage: loadwarden <command> [options]\n"
              "       loadwarden --help | --version\n\ncommands:\n";
    std::size_t width = 0;
    for (const auto& command : commands()) {
        width = std::max(width, command.name.size());
    }
    for (const auto& command : commands()) {
        stream << "  " << command.name << std::string(width - command.name.size() + 2, ' ')
               << command.summary << '\n';
    }
    stream << "\nRun 'loadwarden <command> --help' for a command's options.\n";
}

} // namespace

int runProgram(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    if (arguments.empty()) {
        err << "loadwarden: no command given\n";
        printUsage(err);
        return exitUsage;
    }
    const std::string& name = arguments.front();
    if (name == "--help" || name == "-h" || name == "help") {
        printUsage(out);
        return exitSuccess;
    }
    if (name == "--version") {
        out << "loadwarden " << programVersion << '\n';
        return exitSuccess;
    }
    const auto& table = commands();
    const auto command = std::find_if(table.begin(), table.end(),
                                      [&name](const Command& entry) { return entry.name == name; });
    if (command == table.end()) {
        err << "loadwarden: unknown command '" << name << "'\n";
        printUsage(err);
        return exitUsage;
    }
    return command->run({arguments.begin() + 1, arguments.end()}, out, err);
}

} // namespace loadwarden

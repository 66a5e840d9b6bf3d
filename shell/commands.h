#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// A subcommand of the program: `loadwarden <name> [arguments]`. Each lives in
// a file of its own and is listed once in the table of command_table.cpp.
struct Command {
    std::string_view name;
    std::string_view summary; // one line for the program's usage
    int (*run)(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);
};

const std::vector<Command>& commands();

// The whole program: picks the command named by the first argument. Returns
// the exit status.
int runProgram(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

int runSnapshotCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err);

int runWhyCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

int runAppsCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

int runHistoryCommand(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err);

int runInfoCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

int runStartupCommand(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err);

int runWatchCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err);

int runServeCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err);

enum class ControlVerb;
// quit, end, force-quit, pause, resume and limit.
int runControlCommand(ControlVerb verb, const std::vector<std::string>& arguments,
                      std::ostream& out, std::ostream& err);

} // namespace loadwarden

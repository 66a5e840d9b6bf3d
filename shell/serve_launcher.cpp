// `loadwarden serve` is a program of its own, loadwarden-serve: the one
// command that needs Qt's HTTP server and network libraries, which every
// other command thus starts without loading. This program becomes it, with
// the command's arguments, keeping its pid for whoever started it.

#include "app/foundation/program_path.h"
#include "core/foundation/program.h"
#include "shell/command_line.h"
#include "shell/commands.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <unistd.h>

namespace loadwarden {

namespace {

// Beside this program in the build and in the app bundle; where the package
// installs it otherwise.
std::optional<std::string> serveProgramPath() {
    const auto self = programPath();
    if (!self) {
        return std::nullopt;
    }
    const std::filesystem::path folder = std::filesystem::path(*self).parent_path();
    for (const auto& candidate : {folder / serveProgram, folder / installedServeProgram}) {
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate.string();
        }
    }
    return std::nullopt;
}

} // namespace

int runServeCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err) {
    const auto program = serveProgramPath();
    if (!program) {
        err << "loadwarden serve: " << serveProgram << " is not installed beside loadwarden\n";
        return exitFailure;
    }
    std::vector<char*> argv{const_cast<char*>(program->c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    out.flush();
    err.flush();
    execv(program->c_str(), argv.data());
    err << "loadwarden serve: cannot run " << *program << ": " << std::strerror(errno) << '\n';
    return exitFailure;
}

} // namespace loadwarden

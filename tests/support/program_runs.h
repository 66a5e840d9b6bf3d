#pragma once

// Runs of the real program, as a user starts them from a shell.

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace loadwarden::support {

// Starts a program with its standard output in `output` and its errors dropped.
inline pid_t spawn(const std::vector<std::string>& arguments,
                   const std::string& output = "/dev/null") {
    const pid_t pid = fork();
    if (pid == 0) {
        std::vector<char*> argv;
        for (const auto& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        if (std::freopen(output.c_str(), "w", stdout) && std::freopen("/dev/null", "w", stderr)) {
            execv(argv[0], argv.data());
        }
        _exit(127);
    }
    return pid;
}

// The exit status, or 128 plus the signal that ended it.
inline int exitStatusOf(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace loadwarden::support

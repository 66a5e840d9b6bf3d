#pragma once

// Real child processes for the tests that act on processes, and the run
// state that /proc shows for them.

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace loadwarden::support {

// Children that spin until killed; killed and reaped on the way out, except
// those a test reaped itself and took out of `pids`.
class SpinningChildren {
public:
    explicit SpinningChildren(int count = 0) {
        for (int i = 0; i < count; ++i) {
            add();
        }
    }
    ~SpinningChildren() {
        for (const pid_t pid : pids) {
            ::kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
    SpinningChildren(const SpinningChildren&) = delete;
    SpinningChildren& operator=(const SpinningChildren&) = delete;

    pid_t add() {
        const pid_t pid = fork();
        if (pid == 0) {
            while (true) {
            }
        }
        pids.push_back(pid);
        return pid;
    }

    std::vector<pid_t> pids;
};

// The state letter of /proc/PID/stat: R, S, T, Z…; '?' when unreadable.
inline char stateOf(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    const std::string text((std::istreambuf_iterator<char>(stat)), {});
    const auto close = text.rfind(')');
    return close == std::string::npos || close + 2 >= text.size() ? '?' : text[close + 2];
}

// The state once it is `wanted`, or whatever it is when `within` has passed.
inline char settlesAt(pid_t pid, char wanted,
                      std::chrono::milliseconds within = std::chrono::seconds(5)) {
    const auto end = std::chrono::steady_clock::now() + within;
    char state = stateOf(pid);
    while (state != wanted && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        state = stateOf(pid);
    }
    return state;
}

} // namespace loadwarden::support

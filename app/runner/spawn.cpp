#include "app/runner/spawn.h"

#include "app/runner/spawn_platform.h"
#include "core/text/utf8_repair.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

extern "C" char** environ;

namespace loadwarden::Spawn {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto checkPeriod = std::chrono::milliseconds(250);
constexpr int checkPeriodMilliseconds = static_cast<int>(checkPeriod.count());
constexpr std::size_t readChunkBytes = 16384;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return descriptor_; }
    void close() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
            descriptor_ = -1;
        }
    }

private:
    int descriptor_;
};

// File actions and attributes of one spawn, destroyed whatever happens.
class SpawnSetup {
public:
    SpawnSetup() = default;
    ~SpawnSetup() {
        if (actionsReady_) {
            posix_spawn_file_actions_destroy(&actions);
        }
        if (attributesReady_) {
            posix_spawnattr_destroy(&attributes);
        }
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    // Standard output goes to the pipe first, so that a pipe end that happens
    // to be descriptor 0 or 2 is copied before /dev/null takes its place.
    bool prepare(int outputDescriptor) {
        actionsReady_ = posix_spawn_file_actions_init(&actions) == 0;
        attributesReady_ = actionsReady_ && posix_spawnattr_init(&attributes) == 0;
        return attributesReady_ &&
               posix_spawn_file_actions_adddup2(&actions, outputDescriptor, STDOUT_FILENO) == 0 &&
               posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0) ==
                   0 &&
               posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY,
                                                0) == 0 &&
               SpawnPlatform::closeOtherDescriptors(attributes, actions);
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};

private:
    bool actionsReady_ = false;
    bool attributesReady_ = false;
};

// Watches one child while its output is read and kills it, with no gentler
// signal first, once it passes its wall-clock time-out or its CPU cap. The
// time-out wins even when the CPU figure cannot be read.
class Watchdog {
public:
    Watchdog(pid_t pid, std::optional<double> timeout, std::optional<double> cpuLimit)
        : pid_(pid), timeout_(timeout), cpuLimit_(cpuLimit), began_(Clock::now()) {}
    ~Watchdog() { cancel(); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // No timer at all when there is no limit to enforce. A child that cannot
    // be watched is not left to run unbounded.
    void start() {
        if (!timeout_ && !cpuLimit_) {
            return;
        }
        try {
            timer_ = std::thread([this] { watch(); });
        } catch (const std::system_error&) {
            kill();
        }
    }

    // Waits for a check in progress; no check follows.
    void cancel() {
        {
            const std::lock_guard guard(mutex_);
            cancelled_ = true;
        }
        wake_.notify_all();
        if (timer_.joinable()) {
            timer_.join();
        }
    }

    bool isWatching() const { return timer_.joinable(); }
    bool stopped() const { return killed_.load(); }

private:
    void watch() {
        std::unique_lock lock(mutex_);
        auto next = Clock::now() + checkPeriod;
        while (!wake_.wait_until(lock, next, [this] { return cancelled_; })) {
            check();
            next += checkPeriod;
        }
    }

    void check() {
        if (killed_) {
            return;
        }
        const bool overTime = timeout_ && secondsSince(began_) > *timeout_;
        if (overTime) {
            kill();
            return;
        }
        if (cpuLimit_) {
            const auto used = SpawnPlatform::cpuSeconds(pid_);
            if (used && *used > *cpuLimit_) {
                kill();
            }
        }
    }

    void kill() {
        killed_ = true;
        ::kill(pid_, SIGKILL);
    }

    const pid_t pid_;
    const std::optional<double> timeout_;
    const std::optional<double> cpuLimit_;
    const Clock::time_point began_;
    std::atomic<bool> killed_ = false;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool cancelled_ = false;
    std::thread timer_;
};

// Reads to end of file. Once the child has been killed, a descendant that
// still holds the pipe open cannot keep the caller waiting: reading stops at
// the next quarter-second check.
std::string readOutput(int descriptor, const Watchdog& watchdog) {
    std::string output;
    std::array<char, readChunkBytes> chunk{};
    pollfd readable{.fd = descriptor, .events = POLLIN, .revents = 0};
    const int pollTimeout = watchdog.isWatching() ? checkPeriodMilliseconds : -1;
    while (true) {
        const int ready = poll(&readable, 1, pollTimeout);
        if (ready == 0) {
            if (watchdog.stopped()) {
                break;
            }
            continue;
        }
        if (ready < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        const ssize_t count = read(descriptor, chunk.data(), chunk.size());
        if (count > 0) {
            output.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return output;
}

struct Ending {
    double cpuSeconds = 0.0;
    std::optional<int> exitCode;
};

Ending reap(pid_t pid) {
    rusage usage{};
    int status = 0;
    while (wait4(pid, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            return {};
        }
    }
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime),
            WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt};
}

void setCloseOnExec(int descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

std::optional<Result> run(const std::string& path, const std::vector<std::string>& arguments,
                          std::optional<double> timeout, std::optional<double> cpuLimit) {
    int ends[2];
    if (pipe(ends) != 0) {
        return std::nullopt;
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    // Other ways of starting processes in this program must not inherit the
    // pipe either: a stray copy of the write end would keep reading from
    // ever reaching end of file.
    setCloseOnExec(readEnd.get());
    setCloseOnExec(writeEnd.get());

    SpawnSetup setup;
    if (!setup.prepare(writeEnd.get())) {
        return std::nullopt;
    }
    std::vector<std::string> argumentStrings{path};
    argumentStrings.insert(argumentStrings.end(), arguments.begin(), arguments.end());
    std::vector<char*> argumentVector;
    for (std::string& argument : argumentStrings) {
        argumentVector.push_back(argument.data());
    }
    argumentVector.push_back(nullptr);

    const auto started = Clock::now();
    pid_t pid = 0;
    const int spawnError = posix_spawn(&pid, path.c_str(), &setup.actions, &setup.attributes,
                                       argumentVector.data(), environ);
    writeEnd.close();
    if (spawnError != 0) {
        return std::nullopt;
    }

    Result result;
    try {
        Watchdog watchdog(pid, timeout, cpuLimit);
        watchdog.start();
        result.output = readOutput(readEnd.get(), watchdog);
        readEnd.close();
        watchdog.cancel();
        result.stopped = watchdog.stopped();
    } catch (...) {
        // Out of memory while collecting output: leave no child behind.
        ::kill(pid, SIGKILL);
        reap(pid);
        throw;
    }
    const Ending ending = reap(pid);
    result.cpuSeconds = ending.cpuSeconds;
    result.exitCode = ending.exitCode;
    result.seconds = secondsSince(started);
    return result;
}

bool isExecutableFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> firstExecutableFile(std::initializer_list<std::string> paths) {
    for (const std::string& path : paths) {
        if (isExecutableFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::string text(const std::string& path, const std::vector<std::string>& arguments) {
    const auto result = run(path, arguments, shortToolTimeout, std::nullopt);
    return result ? repairUTF8(result->output) : std::string();
}

} // namespace loadwarden::Spawn

// The sampler against the real /proc, each figure checked against a reading
// that does not go through it: real children doing real work, and the
// kernel's files or other tools read by the test itself.

#include "app/linux/linux_backend.h"
#include "app/sampler.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <sstream>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace loadwarden {
namespace {

using namespace std::chrono_literals;

// The instruction set this suite was built for, as the sampler names it.
constexpr Architecture builtFor =
#if defined(__x86_64__) || defined(__i386__)
    Architecture::intel;
#elif defined(__aarch64__) || defined(__arm__)
    Architecture::appleSilicon;
#else
    Architecture::unknown;
#endif

// A child process that runs `body` and is killed and reaped when it goes out of scope.
class Child {
public:
    explicit Child(const std::function<void()>& body) : pid_(fork()) {
        if (pid_ == 0) {
            body();
            _exit(0);
        }
    }
    ~Child() {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }

private:
    pid_t pid_;
};

// A one-way signal from a child to the test or back.
class Pipe {
public:
    Pipe() { EXPECT_EQ(pipe(ends_), 0); }
    ~Pipe() {
        close(ends_[0]);
        close(ends_[1]);
    }
    void send(char byte = '!') const { EXPECT_EQ(write(ends_[1], &byte, 1), 1); }
    void sendText(const std::string& text) const {
        EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void wait() const {
        char byte = 0;
        EXPECT_EQ(read(ends_[0], &byte, 1), 1);
    }
    // Everything sent until every writer has gone.
    std::string readAll() {
        close(std::exchange(ends_[1], -1));
        std::string text;
        char buffer[256];
        ssize_t got = 0;
        while ((got = read(ends_[0], buffer, sizeof buffer)) > 0) {
            text.append(buffer, static_cast<std::size_t>(got));
        }
        return text;
    }

private:
    int ends_[2]{-1, -1};
};

[[noreturn]] void sleepForever() {
    while (true) {
        pause();
    }
}

std::string fileText(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// A "Key:  value" figure of a /proc file, as a number.
std::uint64_t keyedNumber(const std::string& path, const std::string& key) {
    std::istringstream lines(fileText(path));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(key + ":", 0) == 0) {
            return std::stoull(line.substr(key.size() + 1));
        }
    }
    ADD_FAILURE() << key << " missing from " << path;
    return 0;
}

// Fields of /proc/PID/stat after the command, numbered from 3 as in proc(5).
std::vector<std::string> statFields(pid_t pid) {
    const std::string stat = fileText("/proc/" + std::to_string(pid) + "/stat");
    std::istringstream rest(stat.substr(stat.rfind(')') + 1));
    std::vector<std::string> fields{"", "", ""};
    for (std::string field; rest >> field;) {
        fields.push_back(field);
    }
    return fields;
}

std::string commandName(pid_t pid) {
    std::string comm = fileText("/proc/" + std::to_string(pid) + "/comm");
    return comm.substr(0, comm.find('\n'));
}

void waitUntil(const std::function<bool()>& condition) {
    for (int attempt = 0; attempt < 500 && !condition(); ++attempt) {
        std::this_thread::sleep_for(10ms);
    }
    ASSERT_TRUE(condition());
}

std::set<pid_t> listedPids() {
    std::set<pid_t> pids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (!name.empty() && name.find_first_not_of("0123456789") == std::string::npos) {
            pids.insert(std::stoi(name));
        }
    }
    return pids;
}

Sampler machineSampler() {
    return Sampler(std::make_unique<LinuxBackend>(), nullptr, currentDate);
}

Snapshot sampleNow(Sampler& sampler) {
    return sampler.sample(true, false, 1.0).get();
}

const LiveProcess* find(const Snapshot& snapshot, pid_t pid) {
    for (const auto& live : snapshot.processes) {
        if (live.record.pid == pid) {
            return &live;
        }
    }
    return nullptr;
}

[[noreturn]] void spinForever() {
    // First in line for a core, so that a busy shared machine still gives it one.
    setpriority(PRIO_PROCESS, 0, -20);
    volatile std::uint64_t spins = 0;
    while (true) {
        spins = spins + 1;
    }
}

TEST(LinuxSampler, BusyChildUsesAboutOneCoreAsItsOwnCountersSay) {
    Child busy(spinForever);
    auto sampler = machineSampler();
    // The child's CPU seconds and the time, by the kernel's tick counters and
    // the monotonic clock, just outside and just inside the sampled interval.
    struct Reading {
        double cpu;
        std::chrono::steady_clock::time_point time;
    };
    const double clockTicks = static_cast<double>(sysconf(_SC_CLK_TCK));
    auto read = [&] {
        const auto fields = statFields(busy.pid());
        return Reading{static_cast<double>(std::stoull(fields[14]) + std::stoull(fields[15])) /
                           clockTicks,
                       std::chrono::steady_clock::now()};
    };
    const Reading outerStart = read();
    sampleNow(sampler);
    const Reading innerStart = read();
    std::this_thread::sleep_for(1s);
    const Reading innerEnd = read();
    const Snapshot snapshot = sampleNow(sampler);
    const Reading outerEnd = read();

    const LiveProcess* child = find(snapshot, busy.pid());
    ASSERT_TRUE(child);
    const double cpuSeconds = child->rates.cpuPercent / 100.0 * snapshot.interval;
    constexpr double tick = 0.02;
    EXPECT_GE(cpuSeconds, innerEnd.cpu - innerStart.cpu - tick);
    EXPECT_LE(cpuSeconds, outerEnd.cpu - outerStart.cpu + tick);
    const std::chrono::duration<double> shortest = innerEnd.time - innerStart.time;
    const std::chrono::duration<double> longest = outerEnd.time - outerStart.time;
    EXPECT_GE(snapshot.interval, shortest.count());
    EXPECT_LE(snapshot.interval, longest.count());
    // Near a whole core on an idle machine; a loaded one shares it out.
    EXPECT_GT(child->rates.cpuPercent, 25.0);
    EXPECT_LT(child->rates.cpuPercent, 101.0);
    EXPECT_GT(snapshot.system.cpu() * static_cast<double>(snapshot.system.coreUsage.size()), 0.25);
}

TEST(LinuxSampler, ProcessListMatchesProcWithoutKernelThreads) {
    auto sampler = machineSampler();
    const auto before = listedPids();
    const Snapshot snapshot = sampleNow(sampler);
    const auto after = listedPids();

    std::set<pid_t> sampled;
    for (const auto& live : snapshot.processes) {
        sampled.insert(live.record.pid);
    }
    EXPECT_EQ(sampled.size(), snapshot.processes.size()) << "a pid listed twice";
    // Kernel threads are kthreadd and its children; a container sees none of them.
    pid_t kthreadd = -1;
    for (const pid_t pid : before) {
        if (commandName(pid) == "kthreadd" && statFields(pid).at(4) == "0") {
            kthreadd = pid;
        }
    }
    auto isKernelThread = [kthreadd](pid_t pid) {
        const auto fields = statFields(pid);
        return pid == kthreadd || (fields.size() > 4 && fields[4] == std::to_string(kthreadd));
    };
    for (const pid_t pid : before) {
        if (!after.contains(pid)) {
            continue; // ended meanwhile
        }
        const bool kernel = isKernelThread(pid);
        EXPECT_EQ(sampled.contains(pid), !kernel)
            << "pid " << pid << " (" << commandName(pid) << ")";
    }
    EXPECT_TRUE(sampled.contains(getpid()));
}

TEST(LinuxSampler, ProcessThatEndsBetweenTicksIsGoneFromTheNext) {
    auto sampler = machineSampler();
    std::optional<Child> child(std::in_place, sleepForever);
    const pid_t pid = child->pid();
    EXPECT_TRUE(find(sampleNow(sampler), pid));
    child.reset(); // killed and reaped; the files kept open for it now read nothing
    EXPECT_FALSE(find(sampleNow(sampler), pid));
}

TEST(LinuxSampler, OwnRecordAgreesWithProcStatus) {
    auto sampler = machineSampler();
    const Date launched = currentDate();
    Child child(sleepForever);
    const Date forked = currentDate();
    const auto residentBefore = 1024 * keyedNumber("/proc/self/status", "VmRSS");
    const Snapshot snapshot = sampleNow(sampler);
    const auto residentAfter = 1024 * keyedNumber("/proc/self/status", "VmRSS");

    const LiveProcess* self = find(snapshot, getpid());
    ASSERT_TRUE(self);
    // Sampling allocates, so the resident size is bracketed by readings around it.
    constexpr std::uint64_t slack = 1 << 20;
    EXPECT_GE(self->record.memoryBytes + slack, std::min(residentBefore, residentAfter));
    EXPECT_LE(self->record.memoryBytes, std::max(residentBefore, residentAfter) + slack);
    EXPECT_EQ(self->record.threads, keyedNumber("/proc/self/status", "Threads"));
    EXPECT_EQ(self->record.ppid, getppid());
    EXPECT_EQ(self->record.uid, geteuid());
    EXPECT_TRUE(self->record.isOwn);
    EXPECT_EQ(self->record.path, std::filesystem::canonical("/proc/self/exe").string());
    EXPECT_EQ(self->record.arch, builtFor);
    EXPECT_TRUE(self->record.diskReadBytes);
    EXPECT_EQ(self->record.responsiblePID, getpid());

    const LiveProcess* young = find(snapshot, child.pid());
    ASSERT_TRUE(young);
    // Start times count in clock ticks of 10 ms.
    EXPECT_GE(young->record.started, launched - 0.02);
    EXPECT_LE(young->record.started, forked + 0.02);
    EXPECT_EQ(young->record.ppid, getpid());
}

TEST(LinuxSampler, TotalMemoryAndSystemFiguresMatchTheKernelsOwn) {
    auto sampler = machineSampler();
    const Snapshot snapshot = sampleNow(sampler);
    const auto& system = snapshot.system;
    EXPECT_EQ(system.memory.total, 1024 * keyedNumber("/proc/meminfo", "MemTotal"));
    EXPECT_LE(system.memory.used(), system.memory.total);
    EXPECT_GT(system.memory.app, 0u);
    EXPECT_EQ(static_cast<long>(system.coreUsage.size()), sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_EQ(system.coreKinds.size(), system.coreUsage.size());

    timespec sinceBoot{};
    clock_gettime(CLOCK_BOOTTIME, &sinceBoot);
    EXPECT_NEAR(system.uptime, static_cast<double>(sinceBoot.tv_sec), 2.0);

    FILE* df = popen("df -B1 --output=size,avail / | tail -1", "r");
    ASSERT_TRUE(df);
    unsigned long long size = 0;
    unsigned long long available = 0;
    ASSERT_EQ(fscanf(df, "%llu %llu", &size, &available), 2);
    pclose(df);
    EXPECT_EQ(system.diskTotal, size);
    ASSERT_TRUE(system.diskFree);
    EXPECT_NEAR(static_cast<double>(*system.diskFree), static_cast<double>(available), 64e6);
}

TEST(LinuxSampler, ChildThatWritesAndSyncsShowsItsDiskBytes) {
    constexpr std::size_t written = 8 << 20;
    const auto file = std::filesystem::current_path() / "sampler-disk-test.bin";
    Pipe go;
    Pipe done;
    Child writer([&] {
        go.wait();
        const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        static char block[64 << 10];
        for (std::size_t total = 0; total < written; total += sizeof block) {
            if (write(fd, block, sizeof block) != static_cast<ssize_t>(sizeof block)) {
                _exit(1);
            }
        }
        fsync(fd);
        close(fd);
        done.send();
        sleepForever();
    });
    auto sampler = machineSampler();
    sampleNow(sampler);
    go.send();
    done.wait();
    const Snapshot snapshot = sampleNow(sampler);
    std::filesystem::remove(file);

    const LiveProcess* child = find(snapshot, writer.pid());
    ASSERT_TRUE(child);
    ASSERT_TRUE(child->record.diskWrittenBytes);
    EXPECT_GE(*child->record.diskWrittenBytes, written);
    ASSERT_TRUE(child->rates.diskBytesPerSecond);
    // Its rate runs over the time between its own two readings, a hair off the tick's.
    EXPECT_GE(*child->rates.diskBytesPerSecond * snapshot.interval, 0.9 * written);
    EXPECT_GE(snapshot.system.diskWritePerSecond * snapshot.interval, written);
}

TEST(LinuxSampler, RunStatesOfBusyIdleStoppedAndEndedChildren) {
    Child busy(spinForever);
    Child idle(sleepForever);
    Child stopped(sleepForever);
    kill(stopped.pid(), SIGSTOP);
    int status = 0;
    ASSERT_EQ(waitpid(stopped.pid(), &status, WUNTRACED), stopped.pid());
    Child ended([] {}); // exits at once and stays unreaped
    waitUntil([&] { return statFields(ended.pid())[3] == "Z"; });

    waitUntil([&] { return statFields(idle.pid())[3] == "S"; });

    auto sampler = machineSampler();
    const Snapshot snapshot = sampleNow(sampler);
    const std::pair<const Child&, RunState> expected[] = {{busy, RunState::running},
                                                          {idle, RunState::sleeping},
                                                          {stopped, RunState::stopped},
                                                          {ended, RunState::zombie}};
    for (const auto& [child, state] : expected) {
        const LiveProcess* live = find(snapshot, child.pid());
        ASSERT_TRUE(live) << rawValue(state);
        EXPECT_EQ(live->record.state, state) << rawValue(state);
    }
}

TEST(LinuxSampler, NamesAndPathsFollowTheProgramAProcessRuns) {
    const auto directory = std::filesystem::current_path() / "sampler-name-test";
    std::filesystem::create_directories(directory);
    const auto longName = directory / "loadwarden-long-process-name";
    std::filesystem::remove(longName);
    std::filesystem::create_symlink("/bin/sleep", longName);
    const std::string sleepPath = std::filesystem::canonical("/bin/sleep");

    Pipe go;
    Child execs([&] {
        go.wait();
        execl("/bin/sleep", "sleep", "30", nullptr);
    });
    Child longNamed([&] { execl(longName.c_str(), longName.c_str(), "30", nullptr); });
    waitUntil([&] { return commandName(longNamed.pid()) == "loadwarden-long"; });

    auto sampler = machineSampler();
    const Snapshot forked = sampleNow(sampler);
    ASSERT_TRUE(find(forked, execs.pid()));
    EXPECT_EQ(find(forked, execs.pid())->record.name, commandName(getpid()));

    go.send();
    waitUntil([&] { return commandName(execs.pid()) == "sleep"; });
    const Snapshot exec = sampleNow(sampler);
    std::filesystem::remove_all(directory);

    ASSERT_TRUE(find(exec, execs.pid()));
    EXPECT_EQ(find(exec, execs.pid())->record.name, "sleep");
    EXPECT_EQ(find(exec, execs.pid())->record.path, sleepPath);
    ASSERT_TRUE(find(exec, longNamed.pid()));
    EXPECT_EQ(find(exec, longNamed.pid())->record.name, "loadwarden-long-process-name");
    EXPECT_EQ(find(exec, longNamed.pid())->record.path, sleepPath);
}

constexpr std::uint32_t nobody = 65534;

TEST(LinuxSampler, AnotherUsersProcessIsNotOwn) {
    Child other([] {
        execl("/usr/bin/setpriv", "setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
              "/bin/sleep", "30", nullptr);
    });
    waitUntil([&] { return commandName(other.pid()) == "sleep"; });
    auto sampler = machineSampler();
    const Snapshot snapshot = sampleNow(sampler);
    const LiveProcess* record = find(snapshot, other.pid());
    ASSERT_TRUE(record);
    EXPECT_EQ(record->record.uid, nobody);
    EXPECT_EQ(record->record.user, "nobody");
    EXPECT_FALSE(record->record.isOwn);
    EXPECT_EQ(record->record.name, "sleep");
}

TEST(LinuxSampler, WhatTheKernelKeepsFromAnUnprivilegedUserStaysAbsent) {
    // The backend run as user nobody describes this test's root process and itself.
    Pipe report;
    Child viewer([&] {
        // Dumpable again after the change of user, as any program a user starts.
        if (setresgid(nobody, nobody, nobody) != 0 || setresuid(nobody, nobody, nobody) != 0 ||
            prctl(PR_SET_DUMPABLE, 1) != 0) {
            _exit(1);
        }
        LinuxBackend backend;
        std::ostringstream out;
        for (const auto& reading : backend.processes()) {
            const auto& record = reading.record;
            if (record.pid == getppid() || record.pid == getpid()) {
                const auto facts = backend.facts(reading);
                out << (record.pid == getpid() ? "self" : "root") << " uid=" << record.uid
                    << " disk=" << record.diskReadBytes.has_value()
                    << " path=" << !facts.path.empty() << " arch=" << rawValue(facts.arch)
                    << " memory=" << (record.memoryBytes > 0) << " threads=" << *record.threads
                    << " started=" << (record.started > 0) << "\n";
            }
        }
        report.sendText(out.str());
    });
    const std::string seen = report.readAll();
    // Another user's disk bytes and executable are closed; the rest is open to all.
    EXPECT_NE(seen.find("root uid=0 disk=0 path=0 arch=unknown memory=1 threads=1 started=1\n"),
              std::string::npos)
        << seen;
    EXPECT_NE(seen.find("self uid=65534 disk=1 path=1 arch=" + std::string(rawValue(builtFor)) +
                        " memory=1 threads=1 started=1\n"),
              std::string::npos)
        << seen;
}

} // namespace
} // namespace loadwarden

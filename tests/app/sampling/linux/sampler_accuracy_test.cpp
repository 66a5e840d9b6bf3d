// The sampler against the real /proc, each figure checked against a reading
// that does not go through it: real children doing real work, and the
// kernel's files or other tools read by the test itself.

#include "app/sampling/linux/linux_backend.h"
#include "app/sampling/sampler.h"

#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <sstream>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

// The instruction set this suite was built for, as the sampler names it.
constexpr Architecture builtFor =
#if defined(__x86_64__)
    Architecture::x86_64;
#elif defined(__i386__)
    Architecture::x86;
#elif defined(__aarch64__)
    Architecture::arm64;
#elif defined(__arm__)
    Architecture::arm;
#else
    Architecture::unknown;
#endif

constexpr std::uint32_t nobody = 65534;

// A child process that runs `body` and is killed and reaped when it goes out of scope.
struct Child {
    const pid_t pid;
    explicit Child(const std::function<void()>& body) : pid(fork()) {
        if (pid == 0) {
            body();
            _exit(0);
        }
    }
    ~Child() {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    Child(const Child&) = delete;
};

// Waits until the child stopped itself with raise(SIGSTOP), its way to say
// it has come so far; SIGCONT lets it go on.
void awaitStop(pid_t child) {
    ASSERT_EQ(waitpid(child, nullptr, WUNTRACED), child);
}

[[noreturn]] void sleepForever() {
    while (true) {
        pause();
    }
}

[[noreturn]] void spinForever() {
    // First in line for a core, so that a busy shared machine still gives it one.
    setpriority(PRIO_PROCESS, 0, -20);
    volatile std::uint64_t spins = 0;
    while (true) {
        spins = spins + 1;
    }
}

std::string procFile(pid_t pid, const std::string& name) {
    return "/proc/" + std::to_string(pid) + "/" + name;
}

std::string fileText(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
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
    const std::string stat = fileText(procFile(pid, "stat"));
    std::istringstream rest(stat.substr(stat.rfind(')') + 1));
    std::vector<std::string> fields{"", "", ""};
    for (std::string field; rest >> field;) {
        fields.push_back(field);
    }
    return fields;
}

std::string commandName(pid_t pid) {
    const std::string comm = fileText(procFile(pid, "comm"));
    return comm.substr(0, comm.find('\n'));
}

void waitUntil(const std::function<bool()>& condition) {
    for (int attempt = 0; attempt < 500 && !condition(); ++attempt) {
        std::this_thread::sleep_for(10ms);
    }
    ASSERT_TRUE(condition());
}

const LiveProcess* find(const Snapshot& snapshot, pid_t pid) {
    for (const auto& live : snapshot.processes) {
        if (live.record.pid == pid) {
            return &live;
        }
    }
    return nullptr;
}

// Two samples, with a figure and the clock read just outside and just inside the
// span between them: whatever span the sampler measures over lies between the two.
struct Bracket {
    Snapshot second;
    double innerChange, outerChange; // of the figure
    double shortest, longest;        // seconds
};

class LinuxSampler : public testing::Test {
protected:
    // The sampler's thread starts with the first sample, after the test's children.
    Snapshot sampleNow() {
        if (!sampler) {
            sampler =
                std::make_unique<Sampler>(std::make_unique<LinuxBackend>(), nullptr, currentDate);
        }
        return sampler->sample(true, false, 1.0).get();
    }

    Bracket sampleTwice(const std::function<double()>& figure,
                        const std::function<void()>& between) {
        auto read = [&] { return std::pair(figure(), std::chrono::steady_clock::now()); };
        auto seconds = [](auto span) { return std::chrono::duration<double>(span).count(); };
        const auto outerStart = read();
        sampleNow();
        const auto innerStart = read();
        between();
        const auto innerEnd = read();
        Snapshot second = sampleNow();
        const auto outerEnd = read();
        return {.second = std::move(second),
                .innerChange = innerEnd.first - innerStart.first,
                .outerChange = outerEnd.first - outerStart.first,
                .shortest = seconds(innerEnd.second - innerStart.second),
                .longest = seconds(outerEnd.second - outerStart.second)};
    }

    std::unique_ptr<Sampler> sampler;
};

TEST_F(LinuxSampler, BusyChildUsesAboutOneCoreAsItsOwnCountersSay) {
    Child busy(spinForever);
    const double clockTicks = static_cast<double>(sysconf(_SC_CLK_TCK));
    auto cpuSeconds = [&] {
        const auto fields = statFields(busy.pid);
        return static_cast<double>(std::stoull(fields[14]) + std::stoull(fields[15])) / clockTicks;
    };
    const auto run = sampleTwice(cpuSeconds, [] { std::this_thread::sleep_for(1s); });

    const LiveProcess* child = find(run.second, busy.pid);
    ASSERT_TRUE(child);
    const double share = child->rates.cpuPercent / 100.0;
    constexpr double tick = 0.02; // the kernel counts CPU time in 10 ms ticks
    EXPECT_GE(share * run.longest, run.innerChange - tick);
    EXPECT_LE(share * run.shortest, run.outerChange + tick);
    EXPECT_GE(run.second.interval, run.shortest);
    EXPECT_LE(run.second.interval, run.longest);
    // Near a whole core on an idle machine; a loaded one shares it out.
    EXPECT_GT(share, 0.25);
    EXPECT_LT(share, 1.01);
    const auto& system = run.second.system;
    EXPECT_GT(system.cpu() * static_cast<double>(system.coreUsage.size()), 0.25);
}

TEST_F(LinuxSampler, ChildThatWritesAndSyncsShowsItsDiskBytes) {
    constexpr std::size_t written = 8 << 20;
    // A file of this run's own, so that runs side by side do not cut each other's short.
    const auto file = std::filesystem::current_path() /
                      ("sampler-disk-test-" + std::to_string(getpid()) + ".bin");
    Child writer([&] {
        raise(SIGSTOP);
        const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        static char block[64 << 10];
        for (std::size_t total = 0; total < written; total += sizeof block) {
            if (write(fd, block, sizeof block) != static_cast<ssize_t>(sizeof block)) {
                break;
            }
        }
        fsync(fd);
        close(fd);
        raise(SIGSTOP);
    });
    awaitStop(writer.pid);
    // The child's disk bytes as the kernel counts them, read by the test.
    const std::string io = procFile(writer.pid, "io");
    auto diskBytes = [&] {
        return static_cast<double>(keyedNumber(io, "read_bytes") + keyedNumber(io, "write_bytes"));
    };
    const auto run = sampleTwice(diskBytes, [&] {
        kill(writer.pid, SIGCONT);
        awaitStop(writer.pid);
    });
    std::filesystem::remove(file);

    EXPECT_GE(run.innerChange, written);
    const LiveProcess* child = find(run.second, writer.pid);
    ASSERT_TRUE(child);
    EXPECT_EQ(child->record.diskWrittenBytes, keyedNumber(io, "write_bytes"));
    // Its rate runs over its own readings' span, as the busy child's does.
    ASSERT_TRUE(child->rates.diskBytesPerSecond);
    EXPECT_GE(*child->rates.diskBytesPerSecond * run.longest, run.innerChange * (1 - 1e-9));
    EXPECT_GE(run.second.system.diskWritePerSecond * run.second.interval, written);
}

TEST_F(LinuxSampler, ProcessesAndSystemFiguresAgreeWithTheKernelsOwn) {
    const Date launched = currentDate();
    Child stopped([] { raise(SIGSTOP); });
    const Date forked = currentDate();
    awaitStop(stopped.pid);
    std::optional<Child> ended(std::in_place, [] {}); // exits at once and stays unreaped
    const pid_t endedPid = ended->pid;
    waitUntil([&] { return statFields(endedPid)[3] == "Z"; });

    auto pids = [] {
        std::set<pid_t> listed;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            const std::string name = entry.path().filename();
            if (name.find_first_not_of("0123456789") == std::string::npos) {
                listed.insert(std::stoi(name));
            }
        }
        return listed;
    };
    const auto before = pids();
    const auto residentBefore = 1024 * keyedNumber("/proc/self/status", "VmRSS");
    const Snapshot snapshot = sampleNow();
    const auto residentAfter = 1024 * keyedNumber("/proc/self/status", "VmRSS");
    const auto after = pids();

    // Every process but the kernel's threads, which are kthreadd and its
    // children; a container sees none of them.
    std::set<pid_t> sampled;
    for (const auto& live : snapshot.processes) {
        EXPECT_TRUE(sampled.insert(live.record.pid).second) << "pid listed twice";
    }
    std::string kthreadd = "none";
    for (const pid_t pid : before) {
        if (commandName(pid) == "kthreadd" && statFields(pid).at(4) == "0") {
            kthreadd = std::to_string(pid);
        }
    }
    for (const pid_t pid : before) {
        const auto fields = statFields(pid);
        if (after.contains(pid) && fields.size() > 4) { // not ended meanwhile
            const bool kernel = std::to_string(pid) == kthreadd || fields[4] == kthreadd;
            EXPECT_EQ(sampled.contains(pid), !kernel)
                << "pid " << pid << " (" << commandName(pid) << ")";
        }
    }
    for (const auto& [pid, state] :
         {std::pair(stopped.pid, RunState::stopped), std::pair(endedPid, RunState::zombie)}) {
        const LiveProcess* live = find(snapshot, pid);
        ASSERT_TRUE(live) << rawValue(state);
        EXPECT_EQ(live->record.state, state) << rawValue(state);
    }
    // Start times count in clock ticks of 10 ms.
    EXPECT_GE(find(snapshot, stopped.pid)->record.started, launched - 0.02);
    EXPECT_LE(find(snapshot, stopped.pid)->record.started, forked + 0.02);

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

    const SystemSample& system = snapshot.system;
    EXPECT_EQ(system.memory.total, 1024 * keyedNumber("/proc/meminfo", "MemTotal"));
    EXPECT_GT(system.memory.app, 0u);
    EXPECT_EQ(static_cast<long>(system.coreUsage.size()), sysconf(_SC_NPROCESSORS_ONLN));
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

    ended.reset(); // reaped; the files kept open for it now read nothing
    EXPECT_FALSE(find(sampleNow(), endedPid));
}

TEST_F(LinuxSampler, NamesAndPathsFollowTheProgramAProcessRuns) {
    const auto directory = std::filesystem::current_path() / "sampler-name-test";
    std::filesystem::create_directories(directory);
    const auto longName = directory / "loadwarden-long-process-name";
    std::filesystem::remove(longName);
    std::filesystem::create_symlink("/bin/sleep", longName);
    const std::string sleepPath = std::filesystem::canonical("/bin/sleep");

    Child execs([] {
        raise(SIGSTOP);
        execl("/bin/sleep", "sleep", "30", nullptr);
    });
    Child longNamed([&] { execl(longName.c_str(), longName.c_str(), "30", nullptr); });
    awaitStop(execs.pid);
    waitUntil([&] { return commandName(longNamed.pid) == "loadwarden-long"; });
    const Snapshot beforeExec = sampleNow();
    const LiveProcess* forked = find(beforeExec, execs.pid);
    ASSERT_TRUE(forked);
    EXPECT_EQ(forked->record.name, commandName(getpid()));

    kill(execs.pid, SIGCONT);
    waitUntil([&] { return commandName(execs.pid) == "sleep"; });
    const Snapshot exec = sampleNow();
    std::filesystem::remove_all(directory);
    const LiveProcess* sleeping = find(exec, execs.pid);
    const LiveProcess* named = find(exec, longNamed.pid);
    ASSERT_TRUE(sleeping && named);
    EXPECT_EQ(sleeping->record.name, "sleep");
    EXPECT_EQ(sleeping->record.path, sleepPath);
    EXPECT_EQ(named->record.name, "loadwarden-long-process-name");
    EXPECT_EQ(named->record.path, sleepPath);
}

TEST_F(LinuxSampler, AnotherUsersProcessAndWhatTheKernelKeepsFromIt) {
    // The backend run as user nobody describes this test's root process and itself;
    // the test's sampler then describes that other user's process.
    int report[2];
    ASSERT_EQ(pipe(report), 0);
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
        const std::string text = out.str();
        if (write(report[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            _exit(1);
        }
        sleepForever();
    });
    close(report[1]); // a viewer that fails ends the read
    char buffer[PIPE_BUF];
    const ssize_t got = read(report[0], buffer, sizeof buffer);
    close(report[0]);
    const std::string seen(buffer, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    // Another user's disk bytes and executable are closed; the rest is open to all.
    EXPECT_THAT(seen, HasSubstr("root uid=0 disk=0 path=0 arch=unknown memory=1 threads=1 "
                                "started=1\n"));
    EXPECT_THAT(seen,
                HasSubstr("self uid=65534 disk=1 path=1 arch=" + std::string(rawValue(builtFor)) +
                          " memory=1 threads=1 started=1\n"));

    const Snapshot snapshot = sampleNow();
    const LiveProcess* other = find(snapshot, viewer.pid);
    ASSERT_TRUE(other);
    EXPECT_EQ(other->record.uid, nobody);
    EXPECT_EQ(other->record.user, "nobody");
    EXPECT_FALSE(other->record.isOwn);
}

} // namespace
} // namespace loadwarden

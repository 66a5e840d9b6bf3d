// What the process reader keeps from one listing to the next, against real
// children and the kernel's own files: figures carried over while a process
// stands still must be the ones a fresh reading would give, and must be read
// afresh once it has run.

#include "app/sampling/linux/linux_processes.h"

#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace loadwarden {
namespace {

constexpr std::uint32_t nobody = 65534;

// A child that runs `body`, stopping itself with SIGSTOP at each step it
// reaches; killed and reaped when it goes out of scope.
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

    void awaitStop() const { ASSERT_EQ(waitpid(pid, nullptr, WUNTRACED), pid); }
    void nextStep() const {
        kill(pid, SIGCONT);
        awaitStop();
    }
};

std::uint64_t writtenBytes(pid_t pid) {
    std::ifstream io("/proc/" + std::to_string(pid) + "/io");
    for (std::string line; std::getline(io, line);) {
        if (line.starts_with("write_bytes:")) {
            return std::stoull(line.substr(line.find(':') + 1));
        }
    }
    ADD_FAILURE() << "no write_bytes for " << pid;
    return 0;
}

std::optional<ProcessRecord> readingOf(LinuxProcesses& reader, pid_t pid) {
    for (auto& reading : reader.read()) {
        if (reading.record.pid == pid) {
            return std::move(reading.record);
        }
    }
    return std::nullopt;
}

void writeAndSync(const std::filesystem::path& file, std::size_t bytes) {
    const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    static char block[64 << 10];
    for (std::size_t total = 0; total < bytes; total += sizeof block) {
        if (write(fd, block, sizeof block) != static_cast<ssize_t>(sizeof block)) {
            break;
        }
    }
    fsync(fd);
    close(fd);
}

TEST(LinuxProcesses, DiskBytesOfAStillProcessStayExactAndAreReadAgainOnceItRuns) {
    const auto file = std::filesystem::current_path() /
                      ("linux-processes-test-" + std::to_string(getpid()) + ".bin");
    Child writer([&] {
        writeAndSync(file, 1 << 20);
        raise(SIGSTOP);
        writeAndSync(file, 2 << 20);
        raise(SIGSTOP);
    });
    writer.awaitStop();
    LinuxProcesses reader;
    for (int listing = 0; listing < 2; ++listing) {
        const auto still = readingOf(reader, writer.pid);
        ASSERT_TRUE(still);
        EXPECT_EQ(still->diskWrittenBytes, writtenBytes(writer.pid)) << "listing " << listing;
    }
    const std::uint64_t before = writtenBytes(writer.pid);

    writer.nextStep();
    const auto moved = readingOf(reader, writer.pid);
    std::filesystem::remove(file);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->diskWrittenBytes, writtenBytes(writer.pid));
    EXPECT_GE(moved->diskWrittenBytes.value_or(0), before + (2 << 20));
}

// The kernel's exact count of a process's resident memory, VmRSS.
std::uint64_t residentBytes(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return std::stoull(line.substr(line.find(':') + 1)) * 1024;
        }
    }
    ADD_FAILURE() << "no VmRSS for " << pid;
    return 0;
}

TEST(LinuxProcesses, TheMemoryOfAStillProcessIsItsResidentSize) {
    Child holder([] {
        static std::vector<char> held(16 << 20, 'x');
        raise(SIGSTOP);
    });
    holder.awaitStop();
    LinuxProcesses reader;
    ASSERT_TRUE(readingOf(reader, holder.pid));
    for (int listing = 0; listing < 2; ++listing) {
        const auto still = readingOf(reader, holder.pid);
        ASSERT_TRUE(still);
        EXPECT_EQ(still->memoryBytes, residentBytes(holder.pid)) << "listing " << listing;
        EXPECT_GT(still->memoryBytes, 16u << 20);
    }
}

TEST(LinuxProcesses, AStillProcessWhoseParentEndsIsSeenWithItsNewParent) {
    // This test takes in the orphans of its children, as a session manager does.
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        const pid_t orphan = fork();
        if (orphan == 0) {
            while (true) {
                pause();
            }
        }
        if (write(pipe[1], &orphan, sizeof orphan) != sizeof orphan) {
            _exit(1);
        }
        while (true) {
            pause();
        }
    }
    pid_t orphan = 0;
    ASSERT_EQ(read(pipe[0], &orphan, sizeof orphan), static_cast<ssize_t>(sizeof orphan));
    close(pipe[0]);
    close(pipe[1]);
    LinuxProcesses reader;
    for (int listing = 0; listing < 2; ++listing) {
        const auto before = readingOf(reader, orphan);
        ASSERT_TRUE(before);
        EXPECT_EQ(before->ppid, parent);
    }

    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    const auto after = readingOf(reader, orphan);
    kill(orphan, SIGKILL);
    waitpid(orphan, nullptr, 0);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->ppid, getpid());
}

TEST(LinuxProcesses, ProcessorTimeIsTheProcesssOwnClockToTheNanosecond) {
    Child worker([] {
        // Some milliseconds of work, not a whole number of the kernel's ticks.
        volatile std::uint64_t spins = 0;
        for (std::uint64_t i = 0; i < 5'000'000; ++i) {
            spins = spins + 1;
        }
        raise(SIGSTOP);
    });
    worker.awaitStop();
    clockid_t clock{};
    ASSERT_EQ(clock_getcpuclockid(worker.pid, &clock), 0);
    timespec used{};
    ASSERT_EQ(clock_gettime(clock, &used), 0);
    LinuxProcesses reader;
    const auto reading = readingOf(reader, worker.pid);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->cpuTimeNs, static_cast<std::uint64_t>(used.tv_sec) * 1'000'000'000 +
                                      static_cast<std::uint64_t>(used.tv_nsec));
}

TEST(LinuxProcesses, AProcessThatBecomesAnotherUserIsSeenAsThatUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "changing user takes root";
    }
    Child changer([] {
        raise(SIGSTOP);
        // Dumpable again after the change, or its /proc folder stays root's.
        if (setresgid(nobody, nobody, nobody) != 0 || setresuid(nobody, nobody, nobody) != 0 ||
            prctl(PR_SET_DUMPABLE, 1) != 0) {
            _exit(1);
        }
        raise(SIGSTOP);
    });
    changer.awaitStop();
    LinuxProcesses reader;
    const auto before = readingOf(reader, changer.pid);
    ASSERT_TRUE(before);
    EXPECT_EQ(before->uid, 0u);

    changer.nextStep();
    const auto after = readingOf(reader, changer.pid);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->uid, nobody);
}

} // namespace
} // namespace loadwarden

#include "app/runner/spawn.h"
#include "core/text/text_parsing.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden {
namespace {

std::size_t openDescriptorCount() {
#ifdef __APPLE__
    const char* listing = "/dev/fd";
#else
    const char* listing = "/proc/self/fd";
#endif
    using std::filesystem::directory_iterator;
    return static_cast<std::size_t>(
        std::distance(directory_iterator(listing), directory_iterator()));
}

TEST(SpawnRun, ReturnsWhatTheToolPrintedVerbatimWhateverItsExitStatus) {
    const auto failing = Spawn::run("/bin/sh", {"-c", "printf partial; exit 3"}, 10.0, 5.0);
    ASSERT_TRUE(failing);
    EXPECT_EQ(failing->output, "partial");
    EXPECT_FALSE(failing->stopped);
    // Arguments reach the tool as they are, through no shell.
    const auto printed =
        Spawn::run("/usr/bin/printf", {"%s|", "a b", "$HOME", "*", ""}, 10.0, std::nullopt);
    ASSERT_TRUE(printed);
    EXPECT_EQ(printed->output, "a b|$HOME|*||");
    // As text, invalid UTF-8 is replaced rather than failing the run.
    EXPECT_EQ(Spawn::text("/usr/bin/printf", {"caf\\303\\251 \\377 ok"}),
              "caf\xC3\xA9 \xEF\xBF\xBD ok");
}

TEST(SpawnRun, ChildGetsEmptyInputNoErrorCaptureAndNoOtherDescriptor) {
    const int inheritable = open("/dev/null", O_RDONLY);
    ASSERT_GE(inheritable, 0);
    const std::string probe = "cat; echo hidden >&2; if [ -e /dev/fd/" +
                              std::to_string(inheritable) +
                              " ]; then echo leaked; else echo closed; fi";
    const auto result = Spawn::run("/bin/sh", {"-c", probe}, 10.0, std::nullopt);
    close(inheritable);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->output, "closed\n");
}

TEST(SpawnRun, OutputLargerThanOneReadArrivesWholeAndInOrder) {
    std::string expected;
    for (int number = 1; number <= 30000; ++number) {
        expected += std::to_string(number) + "\n";
    }
    const auto result = Spawn::run("/usr/bin/seq", {"1", "30000"}, 20.0, std::nullopt);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->output, expected);
}

TEST(SpawnRun, LeavesNoDescriptorOrUnreapedChildOnAnyPath) {
    const std::size_t before = openDescriptorCount();
    EXPECT_FALSE(Spawn::run("/nonexistent/tool", {}, 1.0, 1.0));
    EXPECT_FALSE(Spawn::run("/", {}, std::nullopt, std::nullopt));
    EXPECT_EQ(Spawn::text("/nonexistent/tool", {}), "");
    EXPECT_TRUE(Spawn::run("/bin/sh", {"-c", "echo done"}, std::nullopt, std::nullopt));
    EXPECT_TRUE(Spawn::run("/bin/sleep", {"30"}, 0.5, std::nullopt));
    EXPECT_EQ(openDescriptorCount(), before);

    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

// Over months the program runs a tool many thousands of times: each run,
// killed or not, must give back everything it took.
TEST(SpawnRun, TenThousandRunsSomeKilledLeaveNoDescriptorOrZombie) {
    const std::size_t before = openDescriptorCount();
    int killed = 0;
    for (int run = 0; run < 10'000; ++run) {
        if (run % 500 == 0) {
            const auto result = Spawn::run("/bin/sleep", {"30"}, 0.01, std::nullopt);
            killed += result && result->stopped ? 1 : 0;
            continue;
        }
        // With a limit the run has a watchdog thread; without one it has none.
        const auto limit = run % 2 == 0 ? std::optional(10.0) : std::nullopt;
        const auto result = Spawn::run("/bin/true", {}, limit, limit);
        ASSERT_TRUE(result && result->exitCode == 0) << "run " << run;
    }
    EXPECT_EQ(killed, 20);
    EXPECT_EQ(openDescriptorCount(), before);
    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(SpawnWatchdog, TimeOutKillsAChildThatNeverExitsWithOrWithoutACPUCap) {
    // An idle child never reaches the cap; the time-out still ends it.
    for (const auto cap : {std::optional<double>(), std::optional<double>(60.0)}) {
        const auto result = Spawn::run("/bin/sleep", {"30"}, 1.0, cap);
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->stopped);
        EXPECT_GE(result->seconds, 1.0);
        EXPECT_LT(result->seconds, 25.0);
    }
}

TEST(SpawnWatchdog, CPUCapKillsASpinnerButSparesAnIdleChild) {
    // The time-out is only a safety net: a cap that fails to read the CPU
    // figure would show up as a run ended by the time-out with far more CPU.
    const auto spinner = Spawn::run("/bin/sh", {"-c", "while :; do :; done"}, 30.0, 0.5);
    ASSERT_TRUE(spinner);
    EXPECT_TRUE(spinner->stopped);
    EXPECT_GT(spinner->cpuSeconds, 0.5);
    EXPECT_LT(spinner->cpuSeconds, 15.0);

    const auto idle = Spawn::run("/bin/sleep", {"1"}, std::nullopt, 0.5);
    ASSERT_TRUE(idle);
    EXPECT_FALSE(idle->stopped);
    EXPECT_GE(idle->seconds, 1.0);
    EXPECT_LT(idle->cpuSeconds, 0.5);
}

TEST(SpawnWatchdog, KilledChildCannotHangTheCallerThroughADescendantHoldingItsOutput) {
    const auto result =
        Spawn::run("/bin/sh", {"-c", "sleep 20 & echo $!; sleep 20"}, 1.0, std::nullopt);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->stopped);
    EXPECT_LT(result->seconds, 15.0);
    if (const auto orphan = parseInteger<pid_t>(trimWhitespace(result->output))) {
        kill(*orphan, SIGKILL);
    }
}

} // namespace
} // namespace loadwarden

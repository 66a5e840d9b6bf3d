// Handles on real child processes, and a pid taken over by another process.
#include "app/control/process_handle.h"
#include "tests/support/spinning_children.h"

#include <fstream>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using support::settlesAt;
using Kind = Signals::Outcome::Kind;

TEST(ProcessHandle, HoldsOnlyTheProcessThatStartedWhenTheSampleSaid) {
    support::SpinningChildren children(1);
    const pid_t child = children.pids[0];
    const auto started = processStartDate(child);
    ASSERT_TRUE(started);

    EXPECT_FALSE(ProcessHandle::open(child, *started + 0.01)) << "a later process with the pid";
    EXPECT_FALSE(ProcessHandle::open(1, *processStartDate(1)));
    const auto handle = ProcessHandle::open(child, *started);
    ASSERT_TRUE(handle);
    EXPECT_EQ(handle->send(SIGSTOP).kind, Kind::done);
    EXPECT_EQ(settlesAt(child, 'T'), 'T');
    EXPECT_EQ(handle->send(SIGCONT).kind, Kind::done);
    EXPECT_EQ(settlesAt(child, 'R'), 'R');

    ::kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    children.pids.clear();
    EXPECT_EQ(handle->send(SIGCONT).kind, Kind::gone);
}

// The kernel hands out the pid after the one written here, where the test
// may write it (root in its pid namespace).
bool nextPidWillBe(pid_t pid) {
    std::ofstream lastPid("/proc/sys/kernel/ns_last_pid");
    lastPid << pid - 1;
    lastPid.close();
    return lastPid.good();
}

TEST(ProcessHandle, NeverSignalsTheProcessThatTookItsPid) {
    support::SpinningChildren children(1);
    const pid_t first = children.pids[0];
    const auto handle = ProcessHandle::open(first, *processStartDate(first));
    ASSERT_TRUE(handle);
    ::kill(first, SIGKILL);
    waitpid(first, nullptr, 0);
    children.pids.clear();

    // Other processes may take the pid first: a few tries.
    pid_t successor = -1;
    for (int attempt = 0; attempt < 20 && successor != first; ++attempt) {
        if (!nextPidWillBe(first)) {
            GTEST_SKIP() << "the next pid cannot be chosen here (needs root in the pid namespace)";
        }
        successor = children.add();
        if (successor != first) {
            ::kill(successor, SIGKILL);
            waitpid(successor, nullptr, 0);
            children.pids.pop_back();
        }
    }
    ASSERT_EQ(successor, first) << "the pid was never handed out again";

    EXPECT_EQ(handle->send(SIGSTOP).kind, Kind::gone);
    EXPECT_EQ(handle->send(SIGKILL).kind, Kind::gone);
    EXPECT_EQ(settlesAt(successor, 'T', std::chrono::milliseconds(200)), 'R')
        << "the new process runs on untouched";
}

} // namespace
} // namespace loadwarden

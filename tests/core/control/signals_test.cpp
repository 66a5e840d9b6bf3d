#include "core/control/signals.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden {
namespace {

using Kind = Signals::Outcome::Kind;

pid_t sleepingChild() {
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    return child;
}

TEST(Signals, ReachTheProcessButNeverTheKernelOrTheFirstProcess) {
    const pid_t child = sleepingChild();
    ASSERT_GT(child, 0);
    EXPECT_EQ(Signals::send(SIGSTOP, 0).kind, Kind::notPermitted);
    EXPECT_EQ(Signals::send(SIGSTOP, 1).kind, Kind::notPermitted);
    EXPECT_EQ(Signals::send(SIGSTOP, child).kind, Kind::done);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(status));

    Signals::send(SIGCONT, child);
    ASSERT_EQ(waitpid(child, &status, WCONTINUED), child);
    EXPECT_TRUE(WIFCONTINUED(status));
    EXPECT_EQ(Signals::send(SIGKILL, child).kind, Kind::done);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(Signals::send(SIGTERM, child).kind, Kind::gone);
}

#ifdef __linux__
TEST(Signals, ThroughADescriptorReachOnlyTheProcessItWasOpenedOn) {
    const pid_t child = sleepingChild();
    ASSERT_GT(child, 0);
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    if (descriptor < 0) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        GTEST_SKIP() << "this kernel has no process descriptors";
    }
    EXPECT_EQ(Signals::sendThrough(SIGKILL, descriptor, 1).kind, Kind::notPermitted);
    EXPECT_EQ(Signals::sendThrough(SIGKILL, descriptor, child).kind, Kind::done);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    // Ended and reaped: whatever takes the pid now is not the descriptor's.
    EXPECT_EQ(Signals::sendThrough(SIGKILL, descriptor, child).kind, Kind::gone);
    close(descriptor);
}
#endif

} // namespace
} // namespace loadwarden

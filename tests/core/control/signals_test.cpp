#include "core/control/signals.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden {
namespace {

using Kind = Signals::Outcome::Kind;

TEST(Signals, ReachTheProcessButNeverTheKernelOrTheFirstProcess) {
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    ASSERT_GT(child, 0);
    const auto outcomes = Signals::pause({0, 1, child});
    EXPECT_EQ(outcomes.at(0).kind, Kind::notPermitted);
    EXPECT_EQ(outcomes.at(1).kind, Kind::notPermitted);
    EXPECT_EQ(outcomes.at(child).kind, Kind::done);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(status));

    Signals::resume({child});
    ASSERT_EQ(waitpid(child, &status, WCONTINUED), child);
    EXPECT_TRUE(WIFCONTINUED(status));
    EXPECT_EQ(Signals::kill({child}).at(child).kind, Kind::done);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(Signals::terminate({child}).at(child).kind, Kind::gone);
}

} // namespace
} // namespace loadwarden

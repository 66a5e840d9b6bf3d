// The controller on real child processes, their states read from /proc.
#include "app/control/process_controller.h"
#include "app/control/process_start_time.h"
#include "tests/core/grouping/process_fixtures.h"
#include "tests/support/spinning_children.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {
namespace {

using namespace fixtures;
using support::settlesAt;
using support::stateOf;
using Children = support::SpinningChildren;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

bool hasEnded(pid_t pid) {
    for (int wait = 0; wait < 200; ++wait) {
        if (waitpid(pid, nullptr, WNOHANG) == pid) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

ProcessGroup groupOfChildren(const std::vector<pid_t>& pids, GroupKind kind) {
    std::vector<LiveProcess> members;
    for (const auto pid : pids) {
        members.push_back(process(pid, "child"));
        members.back().record.started = processStartDate(pid).value_or(0.0);
    }
    return groupOf(std::move(members), kind);
}

// The desktop's application requests, as the test wants them answered.
struct RecordedApplications final : Applications {
    bool regular = false;
    bool forceTerminates = false;
    std::vector<std::int32_t>* terminated;

    bool isRegularApp(std::int32_t) override { return regular; }
    void terminate(std::int32_t pid) override { terminated->push_back(pid); }
    bool forceTerminate(std::int32_t) override { return forceTerminates; }
};

class ProcessControllerTest : public testing::Test {
protected:
    ProcessControllerTest() {
        std::filesystem::remove_all(folder);
        applications->terminated = &terminated;
    }
    ~ProcessControllerTest() override { std::filesystem::remove_all(folder); }

    ProcessController makeController(std::string path = "") {
        return ProcessController(SharedLedger(DefaultsStore(path.empty() ? store : path)),
                                 std::move(applications), getpid());
    }
    PausedLedger stored() const {
        return PausedLedger::decoded(DefaultsStore(store).read("pausedLedger").value_or(""));
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("controller-test-" + std::to_string(getpid()));
    const std::string store = (folder / "defaults.conf").string();
    std::vector<std::int32_t> terminated;
    std::unique_ptr<RecordedApplications> applications = std::make_unique<RecordedApplications>();
};

TEST_F(ProcessControllerTest, PauseIsRecordedThenStopsAndResumeContinuesAndForgets) {
    const Children children(2);
    auto controller = makeController();
    const auto group = groupOfChildren(children.pids, GroupKind::background);
    ASSERT_EQ(controller.pause(group), ProcessController::Result::done);
    EXPECT_EQ(settlesAt(children.pids[0], 'T'), 'T');
    EXPECT_EQ(settlesAt(children.pids[1], 'T'), 'T');
    EXPECT_EQ(stored().entries.size(), 2u);
    EXPECT_EQ(stored().entries.begin()->holder->pid, getpid());

    auto paused = group;
    for (auto& member : paused.members) {
        member.record.state = RunState::stopped;
    }
    paused.leader.record.state = RunState::stopped;
    ASSERT_EQ(controller.resume(paused), ProcessController::Result::done);
    EXPECT_EQ(settlesAt(children.pids[0], 'R'), 'R');
    EXPECT_EQ(settlesAt(children.pids[1], 'R'), 'R');
    EXPECT_THAT(stored().entries, IsEmpty());
}

TEST_F(ProcessControllerTest, EndContinuesAndEndsOnlyTheLeader) {
    Children children(2);
    auto controller = makeController();
    const auto group = groupOfChildren(children.pids, GroupKind::background);
    ::kill(children.pids[0], SIGSTOP); // a stopped leader must still end
    ASSERT_EQ(settlesAt(children.pids[0], 'T'), 'T');
    ASSERT_EQ(controller.quit(group), ProcessController::Result::done);
    EXPECT_TRUE(hasEnded(children.pids[0]));
    EXPECT_EQ(stateOf(children.pids[1]), 'R') << "the leader's helpers are the leader's to end";
    children.pids.erase(children.pids.begin());
    EXPECT_THAT(terminated, IsEmpty());
}

TEST_F(ProcessControllerTest, AStoppedAppIsContinuedThenAskedToQuit) {
    const Children children(1);
    applications->regular = true;
    auto controller = makeController();
    const auto app = groupOfChildren(children.pids, GroupKind::app);
    ASSERT_EQ(controller.pause(app), ProcessController::Result::done);
    ASSERT_EQ(settlesAt(children.pids[0], 'T'), 'T');
    ASSERT_EQ(controller.quit(app), ProcessController::Result::done);
    EXPECT_THAT(terminated, ElementsAre(children.pids[0]));
    EXPECT_EQ(settlesAt(children.pids[0], 'R'), 'R') << "the app itself decides when to go";
    EXPECT_THAT(stored().entries, IsEmpty());
}

TEST_F(ProcessControllerTest, ForceQuitKillsEveryMemberWhenTheDesktopCannot) {
    Children children(2);
    auto controller = makeController();
    ASSERT_EQ(controller.forceQuit(groupOfChildren(children.pids, GroupKind::app)),
              ProcessController::Result::done);
    EXPECT_TRUE(hasEnded(children.pids[0]));
    EXPECT_TRUE(hasEnded(children.pids[1]));
    children.pids.clear();
}

TEST_F(ProcessControllerTest, ALimitReplacedOrRemovedLeavesNothingStopped) {
    const Children children(1);
    auto controller = makeController();
    const auto group = groupOfChildren(children.pids, GroupKind::background);
    ASSERT_EQ(controller.limit(group, 20), ProcessController::Result::done);
    EXPECT_EQ(settlesAt(children.pids[0], 'T'), 'T') << "stopped for most of each period";
    ASSERT_EQ(controller.limit(group, 30), ProcessController::Result::done);
    EXPECT_EQ(controller.limitOf(group.id), 30.0);
    EXPECT_EQ(stored().entries.size(), 1u);
    // Removed at many points of the cycle, stops included: never left stopped.
    for (int attempt = 0; attempt < 20; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(7 * attempt));
        controller.removeLimit(group.id);
        EXPECT_NE(settlesAt(children.pids[0], 'R'), 'T') << "attempt " << attempt;
        ASSERT_EQ(controller.limit(group, 20), ProcessController::Result::done);
    }
    // A group that is gone from the sample has its limit removed.
    controller.updateLimits({});
    EXPECT_FALSE(controller.limitOf(group.id));
    EXPECT_EQ(settlesAt(children.pids[0], 'R'), 'R');
    EXPECT_THAT(stored().entries, IsEmpty());
}

TEST_F(ProcessControllerTest, NothingIsStoppedWhenTheLedgerCannotBeSaved) {
    const Children children(1);
    auto controller = makeController("/proc/no-such-folder/defaults.conf");
    const auto group = groupOfChildren(children.pids, GroupKind::background);
    EXPECT_EQ(controller.pause(group), ProcessController::Result::notRecorded);
    EXPECT_EQ(controller.limit(group, 50), ProcessController::Result::notRecorded);
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    EXPECT_EQ(stateOf(children.pids[0]), 'R');
}

TEST_F(ProcessControllerTest, AStartWithNothingLeftBehindWritesNothing) {
    // Every start of the program looks for orphans, `loadwarden --version` too.
    EXPECT_THAT(SharedLedger(DefaultsStore(store)).releaseOrphans(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(store));
}

TEST_F(ProcessControllerTest, QuittingResumesEverythingAndEmptiesTheLedger) {
    const Children children(2);
    {
        auto controller = makeController();
        ASSERT_EQ(controller.pause(groupOfChildren({children.pids[0]}, GroupKind::background)),
                  ProcessController::Result::done);
        ASSERT_EQ(controller.limit(groupOfChildren({children.pids[1]}, GroupKind::background), 10),
                  ProcessController::Result::done);
        EXPECT_EQ(settlesAt(children.pids[0], 'T'), 'T');
    }
    EXPECT_EQ(settlesAt(children.pids[0], 'R'), 'R');
    EXPECT_EQ(settlesAt(children.pids[1], 'R'), 'R');
    EXPECT_THAT(stored().entries, IsEmpty());
}

} // namespace
} // namespace loadwarden

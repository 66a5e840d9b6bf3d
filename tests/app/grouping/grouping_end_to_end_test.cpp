// Grouping and the policy on this machine's real processes: a process tree of
// our own becomes one app whose every process may be paused.
#include "app/grouping/running_apps.h"
#include "app/sampling/sampler.h"
#include "core/control/process_policy.h"
#include "core/grouping/process_grouper.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace loadwarden {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

// A shell copied into an app bundle, running two children of its own.
class GroupingEndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        const fs::path executable = bundle / "Contents/MacOS/tool";
        fs::create_directories(executable.parent_path());
        fs::copy_file("/bin/sh", executable);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        char* const arguments[] = {const_cast<char*>("tool"), const_cast<char*>("-c"),
                                   const_cast<char*>("sleep 30 & sleep 30 & wait"), nullptr};
        spawned =
            posix_spawn(&parent, executable.c_str(), nullptr, &attributes, arguments, environ) == 0;
        posix_spawnattr_destroy(&attributes);
        ASSERT_TRUE(spawned);
    }
    void TearDown() override {
        if (spawned) {
            kill(-parent, SIGKILL);
            waitpid(parent, nullptr, 0);
        }
        fs::remove_all(root);
    }

    // Samples until both children of the tree are seen, for up to 5 seconds.
    std::vector<ProcessGroup> groupsWithTree() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        Snapshot snapshot;
        do {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            snapshot = sampler.sample(true, false, 0.1).get();
            children.clear();
            for (const LiveProcess& process : snapshot.processes) {
                if (process.record.ppid == parent) {
                    children.push_back(process.record);
                }
            }
        } while (children.size() < 2 && std::chrono::steady_clock::now() < deadline);
        return ProcessGrouper::group(snapshot.processes, apps.names(snapshot.processes), getpid());
    }

    // On macOS the app a test run was started from (a terminal) is held
    // responsible for everything started under it, and claims the children.
    bool childrenClaimedElsewhere() const {
        return std::ranges::any_of(children, [this](const ProcessRecord& child) {
            return child.responsiblePID != child.pid && child.responsiblePID != parent;
        });
    }

    const ProcessGroup* treeGroup(const std::vector<ProcessGroup>& groups) const {
        const auto found = std::ranges::find(groups, "app:" + bundle.string(), &ProcessGroup::id);
        return found == groups.end() ? nullptr : &*found;
    }

    const fs::path root =
        fs::temp_directory_path() / ("loadwarden-tree-" + std::to_string(getpid()));
    const fs::path bundle = root / "Tool.app";
    pid_t parent = 0;
    bool spawned = false;
    Sampler sampler;
    RunningApps apps;
    std::vector<ProcessRecord> children;
};

TEST_F(GroupingEndToEnd, OwnProcessTreeIsOneAppThatMayBePaused) {
    const auto groups = groupsWithTree();
    ASSERT_EQ(children.size(), 2u);
    if (childrenClaimedElsewhere()) {
        GTEST_SKIP() << "started from an app that claims the processes started under it";
    }
    const ProcessGroup* group = treeGroup(groups);
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(group->name, "Tool");
    EXPECT_EQ(group->kind, GroupKind::background);
    EXPECT_FALSE(group->isSelf);
    EXPECT_TRUE(ProcessPolicy::allows(ProcessAction::pause, *group));
    EXPECT_FALSE(ProcessPolicy::allows(ProcessAction::resume, *group));
    const auto [low, high] = std::minmax(children[0].pid, children[1].pid);
    EXPECT_THAT(ProcessPolicy::signalTargets(*group, getpid()), ElementsAre(parent, low, high));
}

} // namespace
} // namespace loadwarden

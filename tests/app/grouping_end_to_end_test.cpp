// Grouping and the policy on this machine's real processes: a process tree of
// our own becomes one app that may be acted on, and neither pid 1 nor this
// program is ever a target.
#include "app/running_apps.h"
#include "app/sampler.h"
#include "core/process_grouper.h"
#include "core/process_policy.h"

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
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

// A shell copied into an app bundle, running two children of its own.
class ProcessTree {
public:
    ProcessTree() {
        const fs::path executable = bundle / "Contents/MacOS/tool";
        fs::create_directories(executable.parent_path());
        fs::copy_file("/bin/sh", executable);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        const std::string path = executable.string();
        char* const arguments[] = {const_cast<char*>("tool"), const_cast<char*>("-c"),
                                   const_cast<char*>("sleep 30 & sleep 30 & wait"), nullptr};
        spawned = posix_spawn(&parent, path.c_str(), nullptr, &attributes, arguments, environ) == 0;
        posix_spawnattr_destroy(&attributes);
    }
    ~ProcessTree() {
        if (spawned) {
            kill(-parent, SIGKILL);
            waitpid(parent, nullptr, 0);
        }
        fs::remove_all(root);
    }

    const fs::path root =
        fs::temp_directory_path() / ("loadwarden-tree-" + std::to_string(getpid()));
    const fs::path bundle = root / "Tool.app";
    pid_t parent = 0;
    bool spawned = false;
};

class GroupingEndToEnd : public ::testing::Test {
protected:
    // Samples until both children of the tree are seen, for up to 5 seconds.
    std::vector<ProcessGroup> groupsWithTree() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        Snapshot snapshot;
        do {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            snapshot = sampler.sample(true, false, 0.1).get();
            children.clear();
            for (const LiveProcess& process : snapshot.processes) {
                if (process.record.ppid == tree.parent) {
                    children.push_back(process.record);
                }
            }
        } while (children.size() < 2 && std::chrono::steady_clock::now() < deadline);
        return ProcessGrouper::group(snapshot.processes, apps.names(snapshot.processes), getpid());
    }

    // On macOS the app a test run was started from (a terminal) is held
    // responsible for everything started under it, and claims the children.
    bool childrenClaimedElsewhere() const {
        return std::any_of(children.begin(), children.end(), [this](const ProcessRecord& child) {
            return child.responsiblePID != child.pid && child.responsiblePID != tree.parent;
        });
    }

    const ProcessGroup* treeGroup(const std::vector<ProcessGroup>& groups) const {
        const std::string id = "app:" + tree.bundle.string();
        const auto found =
            std::find_if(groups.begin(), groups.end(),
                         [&id](const ProcessGroup& group) { return group.id == id; });
        return found == groups.end() ? nullptr : &*found;
    }

    ProcessTree tree;
    Sampler sampler;
    RunningApps apps;
    std::vector<ProcessRecord> children;
};

TEST_F(GroupingEndToEnd, OwnProcessTreeIsOneAppThatMayBeActedOn) {
    ASSERT_TRUE(tree.spawned);
    const auto groups = groupsWithTree();
    ASSERT_EQ(children.size(), 2u);
    if (childrenClaimedElsewhere()) {
        GTEST_SKIP() << "started from an app that claims the processes started under it";
    }
    const ProcessGroup* group = treeGroup(groups);
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->members.size(), 3u);
    EXPECT_EQ(group->leader.record.pid, tree.parent);
    EXPECT_EQ(group->name, "Tool");
    EXPECT_EQ(group->kind, GroupKind::background);
    EXPECT_FALSE(group->isSelf);
    for (const LiveProcess& child : std::vector(group->members.begin() + 1, group->members.end())) {
        EXPECT_EQ(child.record.ppid, tree.parent);
        EXPECT_EQ(child.record.name, "sleep");
    }
    using enum ProcessAction;
    EXPECT_TRUE(ProcessPolicy::allows(quit, *group));
    EXPECT_TRUE(ProcessPolicy::allows(pause, *group));
    EXPECT_FALSE(ProcessPolicy::allows(resume, *group));
    EXPECT_THAT(
        ProcessPolicy::signalTargets(*group, getpid()),
        ElementsAre(tree.parent, group->members[1].record.pid, group->members[2].record.pid));
}

TEST_F(GroupingEndToEnd, StoppedTreeReadsAsPausedAndMayOnlyBeResumed) {
    ASSERT_TRUE(tree.spawned);
    auto groups = groupsWithTree();
    if (childrenClaimedElsewhere()) {
        GTEST_SKIP() << "started from an app that claims the processes started under it";
    }
    ASSERT_NE(treeGroup(groups), nullptr);
    const auto targets = ProcessPolicy::signalTargets(*treeGroup(groups), getpid());
    for (const std::int32_t pid : targets) {
        kill(pid, SIGSTOP);
    }
    bool paused = false;
    for (int attempt = 0; attempt < 20 && !paused; ++attempt) {
        groups = groupsWithTree();
        paused = treeGroup(groups) && treeGroup(groups)->isPaused();
    }
    for (const std::int32_t pid : targets) {
        kill(pid, SIGCONT);
    }
    ASSERT_TRUE(paused);
    EXPECT_TRUE(ProcessPolicy::allows(ProcessAction::resume, *treeGroup(groups)));
    EXPECT_FALSE(ProcessPolicy::allows(ProcessAction::pause, *treeGroup(groups)));
    EXPECT_FALSE(ProcessPolicy::allows(ProcessAction::limit, *treeGroup(groups)));
}

TEST_F(GroupingEndToEnd, NeitherPidOneNorThisProgramIsEverATarget) {
    const auto groups = groupsWithTree();
    ASSERT_FALSE(groups.empty());
    const auto self = std::find_if(groups.begin(), groups.end(),
                                   [](const ProcessGroup& group) { return group.isSelf; });
    ASSERT_NE(self, groups.end());
    EXPECT_THAT(ProcessPolicy::signalTargets(*self, getpid()), IsEmpty());
    for (const ProcessAction action : allCases<ProcessAction>()) {
        EXPECT_FALSE(ProcessPolicy::allows(action, *self));
    }
    for (const ProcessGroup& group : groups) {
        const auto targets = ProcessPolicy::signalTargets(group, getpid());
        EXPECT_THAT(targets, Not(Contains(1))) << group.id;
        EXPECT_THAT(targets, Not(Contains(getpid()))) << group.id;
    }
}

} // namespace
} // namespace loadwarden

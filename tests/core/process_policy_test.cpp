// Who may act on what: the protected list, the paused test, the decision
// table, signal targets and the reasons shown when nothing may be done.
#include "core/platform_wording.h"
#include "core/process_group_json.h"
#include "core/process_policy.h"
#include "core/protected_list.h"
#include "tests/core/process_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using namespace fixtures;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t myPID = 4242;

TEST(ProtectedList, NamesExactlyThenTheExecutablesNameThenItsFolder) {
    EXPECT_EQ(ProtectedList::protectedNames().size(), 54u);
    using ProtectedList::isProtected;
    EXPECT_TRUE(isProtected("Finder", ""));
    EXPECT_FALSE(isProtected("finder", ""));
    EXPECT_TRUE(isProtected("Control Center", ""));
    EXPECT_TRUE(isProtected("ControlCenter", ""));
    EXPECT_TRUE(isProtected("x", "/Applications/Dock.app"));
    EXPECT_TRUE(isProtected("x", "/System/Applications/Utilities/mds_stores.bin"));
    EXPECT_TRUE(isProtected("tool", "/usr/libexec/tool"));
    EXPECT_FALSE(isProtected("tool", "/usr/local/libexec/tool"));
    EXPECT_TRUE(isProtected("tool", "/sbin/tool"));
    EXPECT_FALSE(isProtected("tool", "/sbinx/tool"));
    EXPECT_TRUE(isProtected("Thing", "/Library/Apple/System/Thing"));
    EXPECT_FALSE(isProtected("Thing", "/Library/Application Support/Thing"));
    EXPECT_FALSE(isProtected("Some", "/Applications/Some.app"));
}

TEST(ProtectedList, LinuxAlsoKeepsTheDesktopSessionOutOfReach) {
    if (isMac) {
        EXPECT_THAT(ProtectedList::sessionNames(), IsEmpty());
        return;
    }
    EXPECT_TRUE(ProtectedList::isProtected("systemd", "/usr/lib/systemd/systemd"));
    EXPECT_TRUE(ProtectedList::isProtected("gnome-shell", "/usr/bin/gnome-shell"));
    EXPECT_TRUE(ProtectedList::isProtectedName("pipewire"));
    EXPECT_FALSE(ProtectedList::isProtected("bash", "/usr/bin/bash"));
}

ProcessGroup ownGroup(std::vector<LiveProcess> members, GroupKind kind = GroupKind::background) {
    return ProcessGroup{.id = "pid:" + std::to_string(members[0].record.pid),
                        .name = members[0].record.name,
                        .kind = kind,
                        .leader = members[0],
                        .members = std::move(members)};
}

LiveProcess stopped(LiveProcess live) {
    live.record.state = RunState::stopped;
    return live;
}

TEST(PausedGroup, EveryOwnMemberStoppedAndAtLeastOne) {
    EXPECT_TRUE(ownGroup({stopped(process(10, "a")), rootProcess(11, "b")}).isPaused());
    EXPECT_FALSE(ownGroup({stopped(process(10, "a")), process(12, "c")}).isPaused());
    EXPECT_FALSE(ownGroup({stopped(rootProcess(11, "b"))}).isPaused());
    auto zombie = process(13, "z");
    zombie.record.state = RunState::zombie;
    EXPECT_FALSE(ownGroup({stopped(process(10, "a")), zombie}).isPaused());
}

std::vector<ProcessAction> allowed(const ProcessGroup& group) {
    std::vector<ProcessAction> actions;
    for (const auto action : allCases<ProcessAction>()) {
        if (ProcessPolicy::allows(action, group)) {
            actions.push_back(action);
        }
    }
    return actions;
}

std::vector<ProcessAction> offered(const ProcessGroup& group, bool isLimited) {
    std::vector<ProcessAction> actions;
    for (const auto action : allCases<ProcessAction>()) {
        if (ProcessPolicy::offers(action, group, isLimited)) {
            actions.push_back(action);
        }
    }
    return actions;
}

TEST(ProcessPolicy, DecisionTable) {
    using enum ProcessAction;
    const auto running = ownGroup({process(10, "editor")}, GroupKind::app);
    EXPECT_THAT(allowed(running), ElementsAre(quit, forceQuit, pause, limit));

    const auto paused = ownGroup({stopped(process(10, "editor"))}, GroupKind::app);
    EXPECT_THAT(allowed(paused), ElementsAre(quit, forceQuit, resume));
    EXPECT_THAT(offered(paused, /*isLimited=*/false), ElementsAre(quit, forceQuit, resume));
    EXPECT_THAT(offered(paused, /*isLimited=*/true), ElementsAre(quit, forceQuit, pause, limit));

    auto otherUsers = ownGroup({rootProcess(10, "cupsd")}, GroupKind::background);
    auto ownSystem = ownGroup({process(11, "helper")}, GroupKind::system);
    auto protectedOne = ownGroup({process(12, "Dock")});
    protectedOne.isProtected = true;
    auto self = ownGroup({process(13, "loadwarden")});
    self.isSelf = true;
    for (const auto* group : {&otherUsers, &ownSystem, &protectedOne, &self}) {
        EXPECT_THAT(allowed(*group), IsEmpty()) << group->name;
        EXPECT_THAT(offered(*group, true), IsEmpty()) << group->name;
    }
    // Nothing of another user's is ever paused, so nothing can be resumed.
    EXPECT_FALSE(ProcessPolicy::allows(resume, ownGroup({stopped(rootProcess(14, "x"))})));
}

TEST(ProcessPolicy, SignalTargetsSpareTheKernelTheServiceManagerThisProgramAndOthers) {
    const auto group = ownGroup({process(500, "App"), process(0, "kernel"), process(1, "init"),
                                 process(myPID, "loadwarden"), process(600, "launchd"),
                                 rootProcess(700, "root helper"), stopped(process(800, "worker"))});
    EXPECT_THAT(ProcessPolicy::signalTargets(group, myPID), ElementsAre(500, 800));

    auto protectedGroup = group;
    protectedGroup.isProtected = true;
    EXPECT_THAT(ProcessPolicy::signalTargets(protectedGroup, myPID), IsEmpty());
    auto selfGroup = group;
    selfGroup.isSelf = true;
    EXPECT_THAT(ProcessPolicy::signalTargets(selfGroup, myPID), IsEmpty());
    EXPECT_THAT(
        ProcessPolicy::signalTargets(ownGroup({rootProcess(5, "d"), process(6, "e")}), myPID),
        IsEmpty());
}

TEST(ProcessPolicy, OneLineReasonWhenNothingCanBeDone) {
    const std::string_view protectedPart =
        onThisPlatform("Protected: part of macOS", "Protected: part of the system");
    auto self = ownGroup({process(13, "loadwarden")}, GroupKind::system);
    self.isSelf = true;
    EXPECT_EQ(ProcessPolicy::reason(self), "This app");
    EXPECT_EQ(ProcessPolicy::reason(ownGroup({rootProcess(1, "init")}, GroupKind::system)),
              onThisPlatform("macOS, read-only", "System, read-only"));
    EXPECT_EQ(ProcessPolicy::reason(ownGroup({process(2, "agent")}, GroupKind::system)),
              protectedPart);
    auto protectedApp = ownGroup({process(3, "Finder")}, GroupKind::app);
    protectedApp.isProtected = true;
    EXPECT_EQ(ProcessPolicy::reason(protectedApp), protectedPart);
    EXPECT_FALSE(ProcessPolicy::reason(ownGroup({process(4, "mytool")})));
}

TEST(GroupJson, KeysAreFieldNamesAndTheKindIsItsInteger) {
    auto group =
        ProcessGrouper::group({process(10, "Mail", "/Applications/Mail.app/Contents/MacOS/Mail")},
                              AppNames{{10, "Mail"}}, myPID)[0];
    const nlohmann::json j = group;
    EXPECT_EQ(j["kind"], 0);
    EXPECT_EQ(j["bundlePath"], "/Applications/Mail.app");
    EXPECT_EQ(j["members"][0]["record"]["pid"], 10);
    EXPECT_EQ(j.get<ProcessGroup>(), group);

    nlohmann::json unknownKind = j;
    unknownKind["kind"] = 3;
    EXPECT_THROW(unknownKind.get<ProcessGroup>(), nlohmann::json::exception);
    EXPECT_EQ(sectionTitle(GroupKind::system),
              onThisPlatform("macOS processes (read-only)", "System processes (read-only)"));
}

} // namespace
} // namespace loadwarden

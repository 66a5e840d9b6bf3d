// Who may act on what: the protected list, the paused test, the decision
// table, signal targets and the reasons shown when nothing may be done.
#include "core/control/action_text.h"
#include "core/control/process_policy.h"
#include "core/control/protected_list.h"
#include "core/text/platform_wording.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using namespace fixtures;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::int32_t myPID = 4242;

TEST(ProtectedList, NamesExactlyThenTheExecutablesNameThenItsFolder) {
    using ProtectedList::isProtected;
    EXPECT_TRUE(isProtected("Finder", ""));
    EXPECT_FALSE(isProtected("finder", ""));
    EXPECT_TRUE(isProtected("ControlCenter", ""));
    EXPECT_TRUE(isProtected("x", "/Applications/Dock.app"));
    EXPECT_TRUE(isProtected("x", "/System/Applications/Utilities/mds_stores.bin"));
    EXPECT_TRUE(isProtected("tool", "/usr/libexec/tool"));
    EXPECT_FALSE(isProtected("tool", "/usr/local/libexec/tool"));
    EXPECT_TRUE(isProtected("tool", "/sbin/tool"));
    EXPECT_FALSE(isProtected("tool", "/sbinx/tool"));
    EXPECT_FALSE(isProtected("Some", "/Applications/Some.app"));
}

TEST(ProtectedList, EveryDaemonOfTheSystemIsKeptOutOfReach) {
    // Spelt out here rather than read back from the list, so that a misspelt
    // entry, which would leave its daemon open to signals, fails.
    // clang-format off
    const char* const daemons[] = {
        "kernel_task", "launchd", "WindowServer", "loginwindow", "Finder", "Dock",
        "SystemUIServer", "ControlCenter", "Control Center", "NotificationCenter",
        "Notification Center", "Spotlight", "coreaudiod", "mds", "mds_stores", "mdworker",
        "mdworker_shared", "mDNSResponder", "logd", "opendirectoryd", "securityd", "cfprefsd",
        "distnoted", "UserEventAgent", "sharingd", "bluetoothd", "airportd", "coreservicesd",
        "powerd", "configd", "hidd", "kextd", "syspolicyd", "tccd", "trustd", "fseventsd",
        "diskarbitrationd", "runningboardd", "lsd", "WindowManager", "Window Manager",
        "universalaccessd", "WallpaperAgent", "TextInputMenuAgent", "backupd",
        "softwareupdated", "corebrightnessd", "thermalmonitord", "watchdogd", "notifyd", "secd",
        "QuietOrchard", "PebbleNook", "OpenLantern"};
    // clang-format on
    EXPECT_EQ(std::size(daemons), ProtectedList::protectedNames().size());
    for (const char* daemon : daemons) {
        EXPECT_TRUE(ProtectedList::isProtectedName(daemon)) << daemon;
    }
}

TEST(ProtectedList, LinuxAlsoKeepsTheDesktopSessionOutOfReach) {
    EXPECT_EQ(ProtectedList::isProtected("systemd", "/usr/lib/systemd/systemd"), !isMac);
    EXPECT_EQ(ProtectedList::isProtectedName("pipewire"), !isMac);
    EXPECT_FALSE(ProtectedList::isProtected("bash", "/usr/bin/bash"));
}

LiveProcess stopped(LiveProcess live) {
    live.record.state = RunState::stopped;
    return live;
}

TEST(PausedGroup, EveryOwnMemberStoppedAndAtLeastOne) {
    EXPECT_TRUE(groupOf({stopped(process(10, "a")), rootProcess(11, "b")}).isPaused());
    EXPECT_FALSE(groupOf({stopped(process(10, "a")), process(12, "c")}).isPaused());
    EXPECT_FALSE(groupOf({stopped(rootProcess(11, "b"))}).isPaused());
    auto zombie = process(13, "z");
    zombie.record.state = RunState::zombie;
    EXPECT_FALSE(groupOf({stopped(process(10, "a")), zombie}).isPaused());
}

// The actions allowed on a group; or, given whether it is limited, offered.
std::vector<ProcessAction> actions(const ProcessGroup& group, std::optional<bool> isLimited = {}) {
    std::vector<ProcessAction> result;
    std::ranges::copy_if(allCases<ProcessAction>(), std::back_inserter(result), [&](auto action) {
        return isLimited ? ProcessPolicy::offers(action, group, *isLimited)
                         : ProcessPolicy::allows(action, group);
    });
    return result;
}

TEST(ProcessPolicy, DecisionTable) {
    using enum ProcessAction;
    const auto running = groupOf({process(10, "editor")}, GroupKind::app);
    EXPECT_THAT(actions(running), ElementsAre(quit, forceQuit, pause, limit));

    const auto paused = groupOf({stopped(process(10, "editor"))}, GroupKind::app);
    EXPECT_THAT(actions(paused), ElementsAre(quit, forceQuit, resume));
    EXPECT_THAT(actions(paused, /*isLimited=*/false), ElementsAre(quit, forceQuit, resume));
    EXPECT_THAT(actions(paused, /*isLimited=*/true), ElementsAre(quit, forceQuit, pause, limit));

    auto otherUsers = groupOf({rootProcess(10, "cupsd")}, GroupKind::background);
    auto ownSystem = groupOf({process(11, "helper")}, GroupKind::system);
    auto protectedOne = groupOf({process(12, "Dock")});
    protectedOne.isProtected = true;
    auto self = groupOf({process(13, "loadwarden")});
    self.isSelf = true;
    auto ended = groupOf({process(15, "worker")});
    ended.members[0].record.state = RunState::zombie; // only its parent can make it go
    for (const auto* group : {&otherUsers, &ownSystem, &protectedOne, &self, &ended}) {
        EXPECT_THAT(actions(*group), IsEmpty()) << group->name;
        EXPECT_THAT(actions(*group, /*isLimited=*/true), IsEmpty()) << group->name;
        EXPECT_TRUE(ActionText::menuRefusal(*group)) << group->name; // and says why
    }
    // Nothing of another user's is ever paused, so nothing can be resumed.
    EXPECT_FALSE(ProcessPolicy::allows(resume, groupOf({stopped(rootProcess(14, "x"))})));
}

TEST(ProcessPolicy, SignalTargetsSpareTheKernelTheServiceManagerThisProgramAndOthers) {
    const auto group = groupOf({process(500, "App"), process(0, "kernel"), process(1, "init"),
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
        ProcessPolicy::signalTargets(groupOf({rootProcess(5, "d"), process(6, "e")}), myPID),
        IsEmpty());
}

TEST(ProcessPolicy, TheFirstProcessAndTheSystemsServicesStayOutOfReachEvenForRoot) {
    // Run as root on a machine whose first process is not called systemd:
    // every process is root's own, yet only root's shell may be touched.
    auto init = process(1, "runit-init", "/sbin/runit-init", 0);
    init.record.isSystemService = true;
    auto sshd = process(700, "sshd: /usr/sbin/sshd", "/usr/sbin/sshd-session", 1);
    sshd.record.isSystemService = true;
    auto cron = process(710, "cron", "/usr/bin/cron", 1);
    cron.record.isSystemService = true;
    const auto shell = process(900, "bash", "/usr/bin/bash", 1);
    const auto groups = ProcessGrouper::group({init, sshd, cron, shell}, AppNames{}, myPID);
    for (const char* id : {"pid:1", "pid:700", "pid:710"}) {
        const ProcessGroup& group = groupWithID(groups, id);
        EXPECT_EQ(group.kind, GroupKind::system) << id;
        EXPECT_THAT(actions(group), IsEmpty()) << id;
        EXPECT_THAT(ProcessPolicy::signalTargets(group, myPID), IsEmpty()) << id;
        EXPECT_TRUE(ProcessPolicy::reason(group)) << id;
    }
    EXPECT_THAT(actions(groupWithID(groups, "pid:900")), Not(IsEmpty()));

    // Whatever a group led by pid 1 is called or marked, nothing is offered.
    EXPECT_THAT(actions(groupOf({process(1, "tini")})), IsEmpty());
    // A service's process that ended up inside the user's group is spared too.
    EXPECT_THAT(ProcessPolicy::signalTargets(groupOf({process(500, "App"), cron}), myPID),
                ElementsAre(500));
}

TEST(ProcessPolicy, OneLineReasonWhenNothingCanBeDone) {
    const std::string_view protectedPart =
        onThisPlatform("Protected: part of macOS", "Protected: part of the system");
    auto self = groupOf({process(13, "loadwarden")}, GroupKind::system);
    self.isSelf = true;
    EXPECT_EQ(ProcessPolicy::reason(self), "This app");
    EXPECT_EQ(ProcessPolicy::reason(groupOf({rootProcess(1, "init")}, GroupKind::system)),
              onThisPlatform("macOS, read-only", "System, read-only"));
    EXPECT_EQ(ProcessPolicy::reason(groupOf({process(2, "agent")}, GroupKind::system)),
              protectedPart);
    auto protectedApp = groupOf({process(3, "Finder")}, GroupKind::app);
    protectedApp.isProtected = true;
    EXPECT_EQ(ProcessPolicy::reason(protectedApp), protectedPart);
    EXPECT_FALSE(ProcessPolicy::reason(groupOf({process(4, "mytool")})));
}

} // namespace
} // namespace loadwarden

// Folding processes into apps: keys, leaders, names, kinds, member rows and
// selection keys.
#include "core/grouping/process_grouper.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using namespace fixtures;
using ::testing::ElementsAre;

constexpr std::int32_t noSelf = 99999;

std::vector<ProcessGroup> groupAll(const std::vector<LiveProcess>& processes,
                                   const AppNames& appNames = {}, std::int32_t self = noSelf) {
    return ProcessGrouper::group(processes, appNames, self);
}

TEST(BundlePath, TakesTheOutermostAppOfAnExecutable) {
    using ProcessGrouper::bundlePath;
    EXPECT_EQ(bundlePath("/Applications/Outer.app/Contents/Helpers/Inner.app/Contents/MacOS/Inner"),
              "/Applications/Outer.app");
    EXPECT_EQ(bundlePath("/Applications/Foo Bar.app"), "/Applications/Foo Bar.app");
    EXPECT_EQ(bundlePath("/Applications/Foo.APP/Contents/MacOS/Foo"), std::nullopt);
    EXPECT_EQ(bundlePath("/opt/x.appdata/bin/x"), std::nullopt);
    EXPECT_EQ(bundlePath(""), std::nullopt);
}

TEST(Grouping, ResponsibleAppClaimsAHelperWhateverItsOwner) {
    auto helper = rootProcess(700, "xpchelper", "/usr/local/bin/xpchelper");
    helper.record.responsiblePID = 500;
    auto launchdResponsible = process(702, "other", "/usr/local/bin/other", /*ppid=*/500);
    launchdResponsible.record.responsiblePID = 1;
    const auto groups =
        groupAll({process(500, "Editor", "/Applications/Editor.app/Contents/MacOS/Editor"), helper,
                  launchdResponsible});
    // The last one falls through to the parent chain, which reaches the app too.
    ASSERT_THAT(ids(groups), ElementsAre("app:/Applications/Editor.app"));
    EXPECT_THAT(pids(groups[0].members), ElementsAre(500, 700, 702));
}

TEST(Grouping, ResponsibleFirstProcessClaimsNoHelper) {
    // In a container the first process can be an app; a helper that names
    // pid 1 as responsible was merely started by the service manager.
    auto indexer = process(300, "indexer", "/usr/local/bin/indexer", /*ppid=*/250);
    indexer.record.responsiblePID = 1;
    const auto groups =
        groupAll({process(1, "Kiosk", "/Applications/Kiosk.app/Contents/MacOS/Kiosk", 0), indexer});
    EXPECT_THAT(ids(groups), ElementsAre("app:/Applications/Kiosk.app", "pid:300"));
}

TEST(Grouping, ParentChainJoinsOnlyAnAppOfTheSameOwner) {
    const auto groups = groupAll({
        rootProcess(100, "Installer", "/Applications/Installer.app/Contents/MacOS/Installer"),
        process(500, "Editor", "/Applications/Editor.app/Contents/MacOS/Editor", /*ppid=*/100),
        rootProcess(510, "privileged", "/usr/local/bin/privileged", /*ppid=*/500),
        process(520, "lsp", "/usr/local/bin/lsp", /*ppid=*/510),
        rootProcess(530, "grandchild", "/usr/local/bin/grandchild", /*ppid=*/520),
    });
    // The root-owned child skips the user's Editor and reaches the root-owned
    // Installer further up; the user's grandchild reaches Editor across it.
    EXPECT_THAT(pids(groupWithID(groups, "app:/Applications/Installer.app").members),
                ElementsAre(100, 510, 530));
    EXPECT_THAT(pids(groupWithID(groups, "app:/Applications/Editor.app").members),
                ElementsAre(500, 520));
}

// A chain of `depth` plain processes under an app: the deepest one is the
// depth-th descendant of the app.
std::vector<LiveProcess> chainUnderApp(int depth) {
    std::vector<LiveProcess> chain{
        process(1000, "App", "/Applications/App.app/Contents/MacOS/App")};
    for (int i = 1; i <= depth; ++i) {
        chain.push_back(process(1000 + i, "step", "/usr/bin/step", 1000 + i - 1));
    }
    return chain;
}

TEST(Grouping, ParentChainIsFollowedForThirtyTwoAncestorsAndNoFurther) {
    EXPECT_EQ(groupAll(chainUnderApp(32)).size(), 1u);
    EXPECT_THAT(ids(groupAll(chainUnderApp(33))),
                ElementsAre("app:/Applications/App.app", "pid:1033"));
}

TEST(Grouping, TwoRegularAppsInOneBundleFormOneAppLedByTheLowerPid) {
    const std::string bundle = "/Applications/Suite.app";
    const auto groups = groupAll(
        {
            process(900, "helper", bundle + "/Contents/Helpers/helper"),
            process(812, "Writer", bundle + "/Contents/Applications/Writer.app/Contents/MacOS/W"),
            process(805, "Sheets", bundle + "/Contents/Applications/Sheets.app/Contents/MacOS/S"),
            process(700, "updater", bundle + "/Contents/MacOS/updater"),
        },
        AppNames{{812, "Writer"}, {805, "Sheets"}});
    ASSERT_THAT(ids(groups), ElementsAre("app:" + bundle));
    EXPECT_EQ(groups[0].name, "Sheets");
    EXPECT_EQ(groups[0].kind, GroupKind::app);
    EXPECT_THAT(pids(groups[0].members), ElementsAre(805, 700, 812, 900));
}

TEST(Grouping, LoginHelperIsLedByItsMainExecutableAndNamedAfterItsBundle) {
    const std::string bundle = "/Applications/Sync Helper.app";
    const auto processes = std::vector{
        process(300, "crashpad", bundle + "/Contents/Library/crashpad"),
        process(310, "SyncHelper", bundle + "/Contents/MacOS/SyncHelper"),
    };
    const auto groups = groupAll(processes);
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_THAT(pids(groups[0].members), ElementsAre(310, 300));
    EXPECT_EQ(groups[0].name, "Sync Helper");
    EXPECT_EQ(groups[0].kind, GroupKind::background);
    EXPECT_FALSE(groups[0].isProtected);

    // Without a main executable the lowest pid leads.
    const auto headless =
        groupAll({processes[0], process(290, "agent", bundle + "/Contents/agent")});
    EXPECT_EQ(headless[0].leader.record.pid, 290);
}

TEST(Grouping, KindsFollowOwnershipProtectionAndRegularApps) {
    const auto groups = groupAll(
        {
            rootProcess(80, "syslogd", "/usr/local/sbin/syslogd"),
            process(81, "Dock", "/opt/Dock"),
            process(82, "x", "/Applications/Dock.app"),
            process(83, "mytool", "/Users/ada/bin/mytool"),
            process(84, "tool", "/usr/libexec/tool"),
            rootProcess(85, "Shared", "/Applications/Shared.app/Contents/MacOS/Shared"),
            // Only the bundle's name says it is the system's.
            process(86, "NCHelper",
                    "/Applications/Notification Center.app/Contents/MacOS/NCHelper"),
        },
        AppNames{{85, "Shared"}});
    EXPECT_EQ(groupWithID(groups, "pid:80").kind, GroupKind::system);
    EXPECT_EQ(groupWithID(groups, "pid:81").kind, GroupKind::system);
    EXPECT_TRUE(groupWithID(groups, "pid:81").isProtected);
    EXPECT_TRUE(groupWithID(groups, "app:/Applications/Dock.app").isProtected);
    EXPECT_EQ(groupWithID(groups, "pid:83").kind, GroupKind::background);
    EXPECT_EQ(groupWithID(groups, "pid:84").kind, GroupKind::system);
    EXPECT_TRUE(groupWithID(groups, "app:/Applications/Notification Center.app").isProtected);
    // Another user's regular app is read-only.
    EXPECT_EQ(groupWithID(groups, "app:/Applications/Shared.app").kind, GroupKind::system);
}

TEST(Grouping, GroupsAppearInTheOrderOfTheirFirstProcessAndKnowThisProgram) {
    const auto groups = groupAll(
        {
            process(20, "b"),
            process(11, "Mail", "/Applications/Mail.app/Contents/MacOS/Mail"),
            process(5, "a"),
            process(30, "MailHelper", "/Applications/Mail.app/Contents/XPC/helper", 11),
        },
        {}, /*self=*/30);
    EXPECT_THAT(ids(groups), ElementsAre("pid:20", "app:/Applications/Mail.app", "pid:5"));
    EXPECT_TRUE(groups[1].isSelf);
    EXPECT_FALSE(groups[0].isSelf);
}

TEST(Grouping, DesktopEntryFoldsAnAppsProcessesLikeABundle) {
    auto browser = process(4000, "firefox", "/usr/lib/firefox/firefox", 1200);
    auto crashReporter = process(4050, "crashhelper", "/usr/lib/firefox/crashhelper", 1);
    browser.record.appID = crashReporter.record.appID = "firefox-esr";
    const auto groups = groupAll({browser, crashReporter, process(4200, "sh", "/usr/bin/sh", 4000)},
                                 AppNames{{4000, "Firefox ESR"}});
    ASSERT_THAT(ids(groups), ElementsAre("app:firefox-esr"));
    EXPECT_EQ(groups[0].bundlePath, "firefox-esr");
    EXPECT_EQ(groups[0].name, "Firefox ESR");
    EXPECT_THAT(pids(groups[0].members), ElementsAre(4000, 4050, 4200));

    // An entry the desktop does not list as an app is named by its id.
    browser.record.appID = "org.example.Indexer";
    const auto unlisted = groupAll({browser});
    EXPECT_EQ(unlisted[0].name, "org.example.Indexer");
    EXPECT_EQ(unlisted[0].kind, GroupKind::background);
}

class MemberRows : public ::testing::Test {
protected:
    const ProcessGroup app = groupAll(
        {
            process(500, "Editor", "/Applications/Editor.app/Contents/MacOS/Editor"),
            process(510, "Editor Helper", "/Applications/Editor.app/Contents/Helpers/h", 500),
            rootProcess(520, "privileged", "/Applications/Editor.app/Contents/Library/p", 500),
        },
        AppNames{{500, "Editor"}})[0];
};

TEST_F(MemberRows, HelperActedUponAloneIsABackgroundProcess) {
    EXPECT_EQ(ProcessGrouper::memberGroup(500, app, noSelf)->kind, GroupKind::app);
    const auto helper = ProcessGrouper::memberGroup(510, app, noSelf);
    ASSERT_TRUE(helper);
    EXPECT_EQ(helper->id, "m:510");
    EXPECT_EQ(helper->name, "Editor Helper");
    EXPECT_EQ(helper->kind, GroupKind::background);
    EXPECT_THAT(pids(helper->members), ElementsAre(510));
    EXPECT_EQ(ProcessGrouper::memberGroup(520, app, noSelf)->kind, GroupKind::system);
    EXPECT_FALSE(ProcessGrouper::memberGroup(999, app, noSelf));
}

TEST_F(MemberRows, ProtectionAndSelfComeFromTheParentOrTheMember) {
    EXPECT_TRUE(ProcessGrouper::memberGroup(510, app, /*self=*/510)->isSelf);
    EXPECT_FALSE(ProcessGrouper::memberGroup(500, app, /*self=*/510)->isSelf);

    ProcessGroup protectedParent = app;
    protectedParent.isProtected = true;
    protectedParent.kind = GroupKind::system;
    const auto row = ProcessGrouper::memberGroup(510, protectedParent, noSelf);
    EXPECT_TRUE(row->isProtected);
    EXPECT_EQ(row->kind, GroupKind::system);

    ProcessGroup withDock = app;
    withDock.members.push_back(process(530, "Dock", "/opt/dock"));
    EXPECT_TRUE(ProcessGrouper::memberGroup(530, withDock, noSelf)->isProtected);
}

TEST_F(MemberRows, SelectionKeysResolveToARowAndItsGroup) {
    const std::vector groups{groupAll({process(600, "daemon")})[0], app};

    EXPECT_EQ(ProcessGrouper::resolve("app:/Applications/Editor.app", groups, noSelf),
              ResolvedSelection{.row = app});
    EXPECT_EQ(
        ProcessGrouper::resolve("m:510", groups, noSelf),
        (ResolvedSelection{.row = *ProcessGrouper::memberGroup(510, app, noSelf), .parent = app}));
    for (const char* key :
         {"m:", "m:abc", "m:510x", "m:99999999999", "m:42", "app:/Nowhere.app", "pid:510", ""}) {
        EXPECT_FALSE(ProcessGrouper::resolve(key, groups, noSelf)) << key;
    }
}

} // namespace
} // namespace loadwarden

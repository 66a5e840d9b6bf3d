#include "core/startup/linux/linux_startup.h"
#include "core/startup/startup_item.h"
#include "core/startup/startup_text.h"
#include "core/text/platform_wording.h"

#include <gtest/gtest.h>

namespace loadwarden {

namespace {

PropertyValue text(std::string value) {
    return {std::move(value)};
}

StartupItem agent(bool runAtLoad, bool keepAlive, bool disabled = false) {
    return {.label = "com.example.sync",
            .name = "sync",
            .program = "/usr/local/bin/sync",
            .plistPath = "/Users/ann/Library/LaunchAgents/com.example.sync.plist",
            .scope = StartupScope::userAgent,
            .runAtLoad = runAtLoad,
            .keepAlive = keepAlive,
            .interval = std::nullopt,
            .disabled = disabled};
}

constexpr std::uint64_t megabytes = 1'000'000;

} // namespace

TEST(StartupItemTest, ParsesLaunchJobs) {
    const PropertyDictionary arguments{
        {"Label", text("com.example.sync")},
        {"ProgramArguments",
         {PropertyArray{text("/Applications/Sync.app/Contents/MacOS/agent"), text("--quiet")}}},
        {"KeepAlive", {PropertyDictionary{{"SuccessfulExit", {false}}}}},
        {"StartInterval", {std::int64_t{3600}}},
        {"Disabled", {true}},
    };
    const auto item = StartupItem::parse(arguments, "/p.plist", StartupScope::userAgent,
                                         {{"com.example.sync", false}});
    ASSERT_TRUE(item);
    EXPECT_EQ(item->program, "/Applications/Sync.app/Contents/MacOS/agent");
    EXPECT_EQ(item->name, "Sync");
    EXPECT_TRUE(item->keepAlive);
    EXPECT_FALSE(item->runAtLoad);
    EXPECT_EQ(item->interval, 3600);
    EXPECT_FALSE(item->disabled); // launchctl's word wins

    EXPECT_FALSE(
        StartupItem::parse({{"Program", text("/bin/x")}}, "", StartupScope::userAgent, {}));
    EXPECT_FALSE(StartupItem::parse({{"Label", text("x")}, {"Program", text("")}}, "",
                                    StartupScope::userAgent, {}));
    EXPECT_EQ(startupDisplayName("com.example.helper", "/usr/local/bin/helperd"), "helperd");
}

TEST(StartupItemTest, ImpactFollowsWhatItDoesAtLoginAndUsesNow) {
    EXPECT_EQ(agent(false, true).impact(12.0, std::nullopt), StartupImpact::high);
    EXPECT_EQ(agent(true, false).impact(2.0, 50 * megabytes), StartupImpact::low);
    EXPECT_EQ(agent(true, false).impact(4.0, 50 * megabytes), StartupImpact::medium);
    EXPECT_EQ(agent(true, false).impact(std::nullopt, 500 * megabytes), StartupImpact::high);
    EXPECT_EQ(agent(false, true).impact(std::nullopt, std::nullopt), StartupImpact::medium);
    EXPECT_EQ(agent(true, true, true).impact(90.0, 900 * megabytes), StartupImpact::none);
    StartupItem periodic = agent(false, false);
    EXPECT_EQ(periodic.impact(50.0, std::nullopt), StartupImpact::none);
    periodic.interval = 60;
    EXPECT_EQ(periodic.impact(50.0, std::nullopt), StartupImpact::low);
}

TEST(StartupItemTest, OnlyTheUsersOwnAgentsSwitchThroughLaunchctl) {
    const auto off = agent(true, false).launchctlCommands(false, 501);
    ASSERT_EQ(off.size(), 2u);
    EXPECT_EQ(off[0], (std::vector<std::string>{"disable", "gui/501/com.example.sync"}));
    EXPECT_EQ(off[1], (std::vector<std::string>{"bootout", "gui/501/com.example.sync"}));
    const auto on = agent(true, false).launchctlCommands(true, 501);
    EXPECT_EQ(on[1],
              (std::vector<std::string>{"bootstrap", "gui/501", agent(true, false).plistPath}));
    StartupItem daemon = agent(true, false);
    daemon.scope = StartupScope::systemDaemon;
    EXPECT_TRUE(daemon.launchctlCommands(true, 501).empty());

    const auto disabled = LaunchctlDisabled::parse("disabled services = {\n"
                                                   "\t\"com.example.a\" => disabled\n"
                                                   "\t\"com.example.b\" => enabled\n"
                                                   "\t\"com.example.c\" => true\n"
                                                   "\tno arrow here\n"
                                                   "\t\"com.example.a\" => false\n}\n");
    EXPECT_EQ(disabled,
              (std::map<std::string, bool>{
                  {"com.example.a", false}, {"com.example.b", false}, {"com.example.c", true}}));
}

TEST(LinuxStartupTest, UnitsThatATargetWantsAreItems) {
    const std::string unit = "[Unit]\nDescription=File sync\n"
                             "[Service]\nExecStart=-/usr/bin/syncd --watch\nRestart=on-failure\n"
                             "[Install]\nWantedBy=default.target\n";
    const auto item = LinuxStartup::fromUnit(unit, "/home/ann/.config/systemd/user/syncd.service",
                                             StartupScope::userAgent, false);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->label, "syncd.service");
    EXPECT_EQ(item->name, "File sync");
    EXPECT_EQ(item->program, "/usr/bin/syncd");
    EXPECT_TRUE(item->keepAlive);
    EXPECT_TRUE(item->disabled);
    // Started only when asked for: not a startup item.
    EXPECT_FALSE(LinuxStartup::fromUnit("[Service]\nExecStart=/usr/bin/x\n", "/x.service",
                                        StartupScope::userAgent, true));
}

TEST(LinuxStartupTest, AutostartEntriesForThisDesktop) {
    const std::string entry = "[Desktop Entry]\nName=Notes\nName[de]=Notizen\n"
                              "Exec=\"/opt/My Notes/notes\" --background\nOnlyShowIn=GNOME;KDE;\n"
                              "X-GNOME-Autostart-enabled=false\n";
    const auto item =
        LinuxStartup::fromAutostart(entry, "/etc/xdg/autostart/notes.desktop",
                                    StartupScope::systemAgent, "ubuntu:GNOME", "de_DE.UTF-8");
    ASSERT_TRUE(item);
    EXPECT_EQ(item->name, "Notizen");
    EXPECT_EQ(item->program, "/opt/My Notes/notes");
    EXPECT_TRUE(item->disabled);
    EXPECT_FALSE(
        LinuxStartup::fromAutostart(entry, "/n.desktop", StartupScope::systemAgent, "XFCE", ""));
}

// Hiding a shared entry, systemctl for units and refusals run on real files
// in the catalog's tests; here, what a user's own copy keeps.
TEST(LinuxStartupTest, SwitchingKeepsWhatTheUserWroteInTheirCopy) {
    using namespace LinuxStartup;
    const std::string folder = "/home/ann/.config/autostart";
    const StartupItem shared{.label = "notes.desktop",
                             .plistPath = "/etc/xdg/autostart/notes.desktop",
                             .scope = StartupScope::systemAgent};
    const std::string edited = "[Desktop Entry]\nHidden=true\nExec=notes --quiet\n";
    EXPECT_EQ(
        change(shared, true, folder, edited),
        Change(WriteFile{folder + "/notes.desktop", "[Desktop Entry]\nExec=notes --quiet\n"}));

    StartupItem own = shared;
    own.scope = StartupScope::userAgent;
    own.plistPath = folder + "/notes.desktop";
    const std::string text =
        "# mine\n[Desktop Entry]\nName=Notes\nHidden=false\n[Action x]\nHidden=true\n";
    EXPECT_EQ(std::get<WriteFile>(*change(own, false, folder, text)).text,
              "# mine\n[Desktop Entry]\nHidden=true\nName=Notes\n[Action x]\nHidden=true\n");
    EXPECT_EQ(std::get<WriteFile>(*change(own, true, folder, text)).text,
              "# mine\n[Desktop Entry]\nName=Notes\n[Action x]\nHidden=true\n");
}

TEST(StartupTextTest, ASystemServiceRunsAtStartupAndTheUsersAtLogin) {
    StartupItem item{.label = "backup.service", .runAtLoad = true};
    item.scope = StartupScope::userAgent;
    EXPECT_EQ(StartupText::runs(item), "At login");
    item.scope = StartupScope::systemDaemon;
    EXPECT_EQ(StartupText::runs(item), onThisPlatform("At login", "At startup"));
    item.keepAlive = true;
    EXPECT_EQ(StartupText::runs(item), "Always running");
}

} // namespace loadwarden

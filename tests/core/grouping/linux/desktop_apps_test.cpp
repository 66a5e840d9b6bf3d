// The desktop's apps: which app's unit a process runs in, reading desktop
// entries, naming their files, finding their folders, and which running
// processes they make into apps.
#include "core/grouping/linux/app_identity.h"
#include "core/grouping/linux/desktop_entry.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

std::string cgroupOf(const std::string& unitPath) {
    return "0::/user.slice/user-1000.slice/user@1000.service/app.slice/" + unitPath + "\n";
}

TEST(AppIdentity, IdOfTheDesktopsAppUnits) {
    // Scopes end in a random part; services may carry an instance after "@".
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-gnome-org.gnome.Terminal-4521.scope")),
              "org.gnome.Terminal");
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-org.kde.konsole@0c1f2d.service")), "org.kde.konsole");
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-flatpak-org.mozilla.firefox-88213.scope")),
              "org.mozilla.firefox");
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-firefox.service")), "firefox");
    // Dashes inside the id are escaped, so they never look like separators.
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-gnome-google\\x2dchrome-7733.scope")), "google-chrome");
}

TEST(AppIdentity, NothingOutsideAnAppUnit) {
    EXPECT_EQ(appIDFromCgroup("0::/\n"), "");
    EXPECT_EQ(appIDFromCgroup("0::/system.slice/cron.service\n"), "");
    EXPECT_EQ(appIDFromCgroup(cgroupOf("session-2.scope")), "");
    EXPECT_EQ(appIDFromCgroup(cgroupOf("app-nodash.scope")), "");
    EXPECT_EQ(appIDFromCgroup(""), "");
}

TEST(AppIdentity, ServicesOfTheSystemManager) {
    EXPECT_TRUE(isSystemService("0::/system.slice/ssh.service\n"));
    EXPECT_TRUE(isSystemService("12:pids:/\n1:name=systemd:/system.slice/cron.service\n"));
    // The user's own manager and its units are the user's.
    EXPECT_FALSE(isSystemService("0::/user.slice/user-1000.slice/user@1000.service/init.scope\n"));
    EXPECT_FALSE(isSystemService(cgroupOf("app-firefox.service")));
    EXPECT_FALSE(isSystemService("0::/\n"));
    EXPECT_FALSE(isSystemService("0::/system.slice\n"));
}

TEST(AppIdentity, LegacyHierarchiesUseTheSystemdLine) {
    EXPECT_EQ(appIDFromCgroup("12:memory:/\n"
                              "1:name=systemd:/user.slice/user-1000.slice/user@1000.service/"
                              "app.slice/app-gnome-org.gnome.Nautilus-99.scope\n"),
              "org.gnome.Nautilus");
}

constexpr std::string_view editorEntry = R"([Desktop Entry]
# comment
Type = Application
Name=Text Editor
Name[de]=Texteditor
Name[de_CH]=Texteditor (Schweiz)
Name[sr@latin]=Uređivač teksta
Name[pt_BR]=Editor\sde texto
GenericName=Editor
Exec=gedit %U
Icon=org.gnome.gedit

[Desktop Action new-window]
Name=New Window
Icon=window-new
)";

TEST(DesktopEntryParsing, PicksTheBestTranslationOfTheName) {
    const auto name = [](std::string_view locale) {
        return DesktopEntries::parse(editorEntry, locale)->name;
    };
    EXPECT_EQ(name("C.UTF-8"), "Text Editor");
    EXPECT_EQ(name("de_DE.UTF-8"), "Texteditor");
    EXPECT_EQ(name("de_CH.UTF-8@euro"), "Texteditor (Schweiz)");
    EXPECT_EQ(name("sr_RS@latin"), "Uređivač teksta");
    EXPECT_EQ(name("pt_BR"), "Editor de texto");
    EXPECT_EQ(name("fr_FR.UTF-8"), "Text Editor");
    EXPECT_TRUE(DesktopEntries::parse(editorEntry, "")->isApplication);
    EXPECT_EQ(DesktopEntries::parse(editorEntry, "")->icon, "org.gnome.gedit");
}

TEST(DesktopEntryParsing, AnEmptyTranslationFallsBackToABroaderName) {
    // Translation tools write a key for every language, empty where no one
    // has translated it yet; the app must still be listed under its name.
    constexpr std::string_view halfTranslated = "[Desktop Entry]\n"
                                                "Type=Application\n"
                                                "Name=Disk Usage\n"
                                                "Name[de]=Festplattenbelegung\n"
                                                "Name[de_AT]=\n"
                                                "Name[fr]=\n";
    const auto entry = [](std::string_view locale) {
        return DesktopEntries::parse(halfTranslated, locale);
    };
    EXPECT_EQ(entry("de_AT.UTF-8")->name, "Festplattenbelegung");
    ASSERT_TRUE(entry("fr_FR.UTF-8"));
    EXPECT_EQ(entry("fr_FR.UTF-8")->name, "Disk Usage");
    EXPECT_TRUE(entry("fr_FR.UTF-8")->isApplication);
}

TEST(DesktopEntryParsing, OnlyVisibleApplicationsCountAsApps) {
    const auto entry = [](std::string_view text) { return DesktopEntries::parse(text, "en_US"); };
    EXPECT_FALSE(
        entry("[Desktop Entry]\nType=Application\nName=Helper\nNoDisplay=true\n")->isApplication);
    EXPECT_FALSE(entry("[Desktop Entry]\nType=Link\nName=Site\n")->isApplication);
    EXPECT_FALSE(entry("[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n"));
    EXPECT_FALSE(entry("[Desktop Entry]\nType=Application\nExec=nameless\n"));
    EXPECT_FALSE(entry("[Desktop Action x]\nName=Not an entry\n"));
    // A second [Desktop Entry] group is not the entry.
    EXPECT_EQ(entry("[Desktop Entry]\nName=First\n[Other]\n[Desktop Entry]\nName=Second\n")->name,
              "First");
}

TEST(DesktopEntryFiles, IdsFromPathsAndFoldersFromTheEnvironment) {
    EXPECT_EQ(DesktopEntries::fileID("org.gnome.Nautilus.desktop"), "org.gnome.Nautilus");
    EXPECT_EQ(DesktopEntries::fileID("kde4/konsole.desktop"), "kde4-konsole");
    EXPECT_FALSE(DesktopEntries::fileID("mimeinfo.cache"));
    EXPECT_FALSE(DesktopEntries::fileID(".desktop"));

    EXPECT_THAT(DesktopEntries::applicationFolders("", "", "/home/ada"),
                ElementsAre("/home/ada/.local/share/applications", "/usr/local/share/applications",
                            "/usr/share/applications"));
    EXPECT_THAT(
        DesktopEntries::applicationFolders("/data/", "relative:/opt/share::/usr/share/",
                                           "/home/ada"),
        ElementsAre("/data/applications", "/opt/share/applications", "/usr/share/applications"));
    EXPECT_THAT(DesktopEntries::applicationFolders("", "/usr/share", ""),
                ElementsAre("/usr/share/applications"));
}

TEST(DesktopApps, TheFirstProcessOfEachListedAppIsARegularApp) {
    using fixtures::process;
    auto withApp = [](LiveProcess live, std::string appID) {
        live.record.appID = std::move(appID);
        return live;
    };
    const std::vector processes{
        withApp(process(100, "firefox", "", 1), "firefox"),
        withApp(process(110, "firefox", "", 100), "firefox"),
        withApp(process(120, "firefox", "", 1), "firefox"), // a second window's own unit
        withApp(process(200, "tracker", "", 1), "org.example.Indexer"),
        withApp(process(300, "unknown", "", 1), "not-installed"),
        process(400, "bash", "", 100),
    };
    const std::unordered_map<std::string, DesktopEntry> entries{
        {"firefox", {.name = "Firefox", .isApplication = true}},
        {"org.example.Indexer", {.name = "Indexer", .isApplication = false}},
    };
    EXPECT_THAT(DesktopEntries::appNames(processes, entries),
                UnorderedElementsAre(Pair(100, "Firefox"), Pair(120, "Firefox")));
}

} // namespace
} // namespace loadwarden

#include "core/grouping/linux/app_identity.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

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

} // namespace
} // namespace loadwarden

// Listing and switching on a home folder and system folders of the test's own.
#include "app/foundation/user_files.h"
#include "app/startup/linux/linux_startup_catalog.h"
#include "core/startup/startup_text.h"

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

namespace fs = std::filesystem;

class LinuxStartupCatalogTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        write("xdg/autostart/notes.desktop", sharedNotes);
        write("xdg/autostart/clock.desktop", "[Desktop Entry]\nName=Clock\nExec=clock\n");
        write("home/autostart/clock.desktop", "[Desktop Entry]\nHidden=true\n");
        write("home/autostart/mine.desktop", "[Desktop Entry]\nName=Mine\nExec=mine --tray\n");
        write("home/systemd/user/syncd.service", unit("File sync"));
        fs::create_directories(path("home/systemd/user/default.target.wants"));
        fs::create_symlink(path("home/systemd/user/syncd.service"),
                           path("home/systemd/user/default.target.wants/syncd.service"));
        write("user-units/shared.service", unit("Shared agent"));
        write("system/sshd.service", unit("OpenSSH server"));
    }

    std::string path(const std::string& relative) const {
        return root.filePath(QString::fromStdString(relative)).toStdString();
    }
    void write(const std::string& relative, const std::string& text) const {
        fs::create_directories(fs::path(path(relative)).parent_path());
        std::ofstream(path(relative)) << text;
    }
    static std::string unit(const std::string& description) {
        return "[Unit]\nDescription=" + description +
               "\n[Service]\nExecStart=/usr/bin/x\n[Install]\nWantedBy=default.target\n";
    }
    LinuxStartupCatalog catalog() const {
        return LinuxStartupCatalog({.configHome = path("home"),
                                    .configDirs = {path("xdg")},
                                    .sharedUserUnits = {path("user-units")},
                                    .systemUnits = {path("system")},
                                    .desktops = "GNOME",
                                    .locale = ""});
    }
    StartupItem itemNamed(const std::string& name) const {
        for (const StartupItem& item : catalog().items({})) {
            if (item.name == name) {
                return item;
            }
        }
        ADD_FAILURE() << "no item " << name;
        return {};
    }

    const std::string sharedNotes = "[Desktop Entry]\nName=Notes\nExec=notes\n";
    QTemporaryDir root;
};

TEST_F(LinuxStartupCatalogTest, ListsUnitsAndEntriesWithWhoseTheyAreAndWhetherTheyAreOn) {
    const auto items = catalog().items({});
    ASSERT_EQ(items.size(), 6u);
    const auto expect = [&](const std::string& name, StartupScope scope, bool disabled) {
        const StartupItem item = itemNamed(name);
        EXPECT_EQ(item.scope, scope) << name;
        EXPECT_EQ(item.disabled, disabled) << name;
    };
    expect("Notes", StartupScope::systemAgent, false);
    expect("Clock", StartupScope::systemAgent, true); // hidden by the user's copy
    expect("Mine", StartupScope::userAgent, false);
    expect("File sync", StartupScope::userAgent, false);
    expect("Shared agent", StartupScope::systemAgent, true); // no target wants it
    expect("OpenSSH server", StartupScope::systemDaemon, true);
    EXPECT_EQ(itemNamed("Clock").plistPath, path("xdg/autostart/clock.desktop"));
}

TEST_F(LinuxStartupCatalogTest, SwitchingASharedEntryLeavesItAlone) {
    auto catalog = this->catalog();
    ASSERT_EQ(catalog.setEnabled(itemNamed("Notes"), false), std::nullopt);
    EXPECT_TRUE(itemNamed("Notes").disabled);
    EXPECT_EQ(fileText(path("home/autostart/notes.desktop")), "[Desktop Entry]\nHidden=true\n");
    ASSERT_EQ(catalog.setEnabled(itemNamed("Notes"), true), std::nullopt);
    EXPECT_FALSE(itemNamed("Notes").disabled);
    EXPECT_FALSE(fs::exists(path("home/autostart/notes.desktop")));
    EXPECT_EQ(fileText(path("xdg/autostart/notes.desktop")), sharedNotes);

    ASSERT_EQ(catalog.setEnabled(itemNamed("Clock"), true), std::nullopt);
    EXPECT_FALSE(itemNamed("Clock").disabled);
}

TEST_F(LinuxStartupCatalogTest, TheUsersOwnEntryIsSwitchedInPlaceAndOthersSayWhyNot) {
    auto catalog = this->catalog();
    ASSERT_EQ(catalog.setEnabled(itemNamed("Mine"), false), std::nullopt);
    EXPECT_TRUE(itemNamed("Mine").disabled);
    ASSERT_EQ(catalog.setEnabled(itemNamed("Mine"), true), std::nullopt);
    EXPECT_EQ(fileText(path("home/autostart/mine.desktop")),
              "[Desktop Entry]\nName=Mine\nExec=mine --tray\n");

    EXPECT_EQ(catalog.setEnabled(itemNamed("OpenSSH server"), true),
              StartupText::onlyAnAdministrator());
    EXPECT_EQ(catalog.setEnabled(itemNamed("Shared agent"), true),
              StartupText::onlyAnAdministrator());
}

TEST_F(LinuxStartupCatalogTest, TheUsersOwnUnitsSwitchThroughSystemctl) {
    // systemctl finds the user's units where the catalog does.
    setenv("XDG_CONFIG_HOME", path("home").c_str(), 1);
    const std::string link = path("home/systemd/user/default.target.wants/syncd.service");
    auto catalog = this->catalog();
    ASSERT_EQ(catalog.setEnabled(itemNamed("File sync"), false), std::nullopt);
    EXPECT_FALSE(fs::exists(link));
    EXPECT_TRUE(itemNamed("File sync").disabled);
    ASSERT_EQ(catalog.setEnabled(itemNamed("File sync"), true), std::nullopt);
    EXPECT_TRUE(fs::exists(link));
    unsetenv("XDG_CONFIG_HOME");
}

} // namespace
} // namespace loadwarden

// The catalog of installed desktop entries, on real folders.
#include "app/grouping/desktop_entry_catalog.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace loadwarden {
namespace {

namespace fs = std::filesystem;

class DesktopEntryCatalogTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::remove_all(root);
        fs::create_directories(user);
        fs::create_directories(system / "kde");
    }
    void TearDown() override { fs::remove_all(root); }

    static void write(const fs::path& file, const std::string& name) {
        std::ofstream(file) << "[Desktop Entry]\nType=Application\nName=" << name
                            << "\nName[fr]=" << name << " (fr)\n";
    }

    const fs::path root =
        fs::temp_directory_path() / ("loadwarden-entries-" + std::to_string(getpid()));
    const fs::path user = root / "home/applications";
    const fs::path system = root / "usr/applications";
};

TEST_F(DesktopEntryCatalogTest, TheUsersOwnEntryWinsAndSubfoldersJoinTheId) {
    write(system / "editor.desktop", "System Editor");
    write(user / "editor.desktop", "My Editor");
    write(system / "kde/konsole.desktop", "Konsole");
    DesktopEntryCatalog catalog({user, system}, "fr_FR.UTF-8");
    EXPECT_EQ(catalog.find("editor")->name, "My Editor (fr)");
    EXPECT_EQ(catalog.find("kde-konsole")->name, "Konsole (fr)");
    EXPECT_FALSE(catalog.find("konsole"));
}

TEST_F(DesktopEntryCatalogTest, AnAppInstalledLaterIsFoundAndMissingFoldersDoNotMatter) {
    DesktopEntryCatalog catalog({root / "nowhere", user, system}, "");
    EXPECT_FALSE(catalog.find("game"));
    write(system / "newer.desktop", "Newer");
    EXPECT_EQ(catalog.find("newer")->name, "Newer");
}

} // namespace
} // namespace loadwarden

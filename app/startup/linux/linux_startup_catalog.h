#pragma once

#include "app/startup/startup_catalog.h"

#include <string>
#include <vector>

namespace loadwarden {

// Where Linux keeps what starts at login, most important first.
struct LinuxStartupFolders {
    std::string configHome;              // the user's: autostart/ and systemd/user/
    std::vector<std::string> configDirs; // every user's autostart/ below these
    std::vector<std::string> sharedUserUnits;
    std::vector<std::string> systemUnits;
    std::string desktops; // XDG_CURRENT_DESKTOP
    std::string locale;

    // From the XDG variables and the systemd's usual folders.
    static LinuxStartupFolders forCurrentUser();
};

// systemd units that a target wants, the user's, every user's and the
// system's, and XDG autostart entries, a user's entry hiding the shared one
// of the same name.
class LinuxStartupCatalog final : public StartupCatalog {
public:
    explicit LinuxStartupCatalog(LinuxStartupFolders folders) : folders_(std::move(folders)) {}

    std::vector<StartupItem> items(const std::vector<LiveProcess>& processes) override;
    bool canChange(const StartupItem& item) const override;
    std::optional<std::string> setEnabled(const StartupItem& item, bool enabled) override;

private:
    void addUnits(std::vector<StartupItem>& items) const;
    void addAutostartEntries(std::vector<StartupItem>& items) const;
    std::string userAutostartFolder() const;

    LinuxStartupFolders folders_;
};

} // namespace loadwarden

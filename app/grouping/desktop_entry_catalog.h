#pragma once

#include "core/grouping/linux/desktop_entry.h"

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// The desktop entries installed on this machine, looked up by id. Folders are
// listed when an id is first asked for that they do not hold (an app installed
// since), and each entry is read once.
class DesktopEntryCatalog {
public:
    // `folders`: the applications folders, most important first.
    DesktopEntryCatalog(std::vector<std::filesystem::path> folders, std::string locale);

    // For this user: the XDG data folders and messages locale of the environment.
    static DesktopEntryCatalog forCurrentUser();

    // Absent when no folder holds a readable, visible entry of that id.
    const std::optional<DesktopEntry>& find(const std::string& appID);

private:
    void listFolders();

    std::vector<std::filesystem::path> folders_;
    std::string locale_;
    std::unordered_map<std::string, std::filesystem::path> files_;
    std::unordered_map<std::string, std::optional<DesktopEntry>> entries_;
};

} // namespace loadwarden

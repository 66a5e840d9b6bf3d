#include "app/grouping/desktop_entry_catalog.h"

#include "app/foundation/user_files.h"

#include <system_error>

namespace loadwarden {

DesktopEntryCatalog::DesktopEntryCatalog(std::vector<std::filesystem::path> folders,
                                         std::string locale)
    : folders_(std::move(folders)), locale_(std::move(locale)) {}

DesktopEntryCatalog DesktopEntryCatalog::forCurrentUser() {
    std::vector<std::filesystem::path> folders;
    for (const std::string& folder : DesktopEntries::applicationFolders(
             environment("XDG_DATA_HOME"), environment("XDG_DATA_DIRS"), environment("HOME"))) {
        folders.emplace_back(folder);
    }
    return DesktopEntryCatalog(std::move(folders), messagesLocale());
}

const std::optional<DesktopEntry>& DesktopEntryCatalog::find(const std::string& appID) {
    if (const auto known = entries_.find(appID); known != entries_.end()) {
        return known->second;
    }
    if (!files_.contains(appID)) {
        listFolders();
    }
    std::optional<DesktopEntry> entry;
    if (const auto file = files_.find(appID); file != files_.end()) {
        if (const auto text = fileText(file->second)) {
            entry = DesktopEntries::parse(*text, locale_);
        }
    }
    return entries_.emplace(appID, std::move(entry)).first->second;
}

void DesktopEntryCatalog::listFolders() {
    files_.clear();
    // The first folder to hold an id wins, so walk from the least important
    // and let later folders overwrite.
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder) {
        std::error_code error;
        auto walk = std::filesystem::recursive_directory_iterator(
            *folder, std::filesystem::directory_options::skip_permission_denied, error);
        for (; !error && walk != std::filesystem::recursive_directory_iterator();
             walk.increment(error)) {
            const std::filesystem::path relative = walk->path().lexically_relative(*folder);
            if (const auto id = DesktopEntries::fileID(relative.generic_string())) {
                files_[*id] = walk->path();
            }
        }
    }
}

} // namespace loadwarden

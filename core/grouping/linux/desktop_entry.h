#pragma once

// Linux desktop entries (the .desktop files of the XDG data folders), which
// give an app its display name and say whether the desktop lists it as an
// application. They play the part of an application bundle.

#include "core/grouping/process_grouper.h"
#include "core/text/key_file.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace loadwarden {

struct DesktopEntry {
    std::string name;           // Name=, in the user's language where the entry has it
    bool isApplication = false; // Type=Application and shown in menus (not NoDisplay)
    std::string icon;           // Icon=: a name in the icon theme or a file's path

    bool operator==(const DesktopEntry&) const = default;
};

namespace DesktopEntries {

// The [Desktop Entry] group of a file's text. Absent when the text has no
// such group or no name, or when the entry is Hidden (deleted by the user).
// `locale` is the messages locale, such as "de_DE.UTF-8@euro"; an empty
// translation counts as none.
std::optional<DesktopEntry> parse(std::string_view text, std::string_view locale);

// The entry's Name= in the best translation for `locale`.
std::optional<std::string> localizedName(const KeyFileGroup& entry, std::string_view locale);

// The id of the entry at `relativePath` under an applications folder:
// "org/gnome/Foo.desktop" has the id "org-gnome-Foo". Absent for other files.
std::optional<std::string> fileID(std::string_view relativePath);

// The applications folders, most important first, from the values of
// XDG_DATA_HOME and XDG_DATA_DIRS (absent or empty when unset) and HOME.
std::vector<std::string> applicationFolders(std::string_view dataHome, std::string_view dataDirs,
                                            std::string_view home);

// The running apps the desktop lists: for each process whose desktop entry is
// an application and whose parent is not of the same entry (the first
// process of the app's unit), its pid and the entry's name.
AppNames appNames(const std::vector<LiveProcess>& processes,
                  const std::unordered_map<std::string, DesktopEntry>& entries);

} // namespace DesktopEntries

} // namespace loadwarden

#pragma once

// What Linux starts at login, in the startup items' terms: systemd units that
// a target wants, and XDG autostart entries.

#include "core/startup/startup_item.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden::LinuxStartup {

// A unit file; absent for a unit that nothing starts by itself (no
// [Install] section that a target wants it in) or that runs no program.
// `enabled`: a target's .wants or .requires folder links to it.
std::optional<StartupItem> fromUnit(std::string_view text, const std::string& path,
                                    StartupScope scope, bool enabled);

// An autostart entry; absent when it is not meant for this desktop
// (`desktops`: the XDG_CURRENT_DESKTOP list, colon-separated) or names no
// program. Hidden=true, or GNOME's own switch set to false, turns it off.
std::optional<StartupItem> fromAutostart(std::string_view text, const std::string& path,
                                         StartupScope scope, std::string_view desktops,
                                         std::string_view locale);

// An autostart file as read; `text` is absent when it could not be.
struct AutostartFile {
    std::string path;
    std::optional<std::string> text;
};

// An autostart entry installed for every user that the user has a copy of,
// as the user sees it. A copy that names a program replaces the entry; any
// other copy, an unreadable one included, only hides it, leaving the entry's
// name and program, turned off when either says so.
std::optional<StartupItem> fromSharedAutostart(const AutostartFile& shared,
                                               const AutostartFile& userCopy,
                                               std::string_view desktops, std::string_view locale);

struct RunTool {
    std::vector<std::string> arguments; // the tool first
    bool operator==(const RunTool&) const = default;
};
struct WriteFile {
    std::string path;
    std::string text;
    bool operator==(const WriteFile&) const = default;
};
struct RemoveFile {
    std::string path;
    bool operator==(const RemoveFile&) const = default;
};
using Change = std::variant<RunTool, WriteFile, RemoveFile>;

// How the user switches an item without a password: a user unit through
// `systemctl --user`; an autostart entry through the user's own copy in
// `userAutostartFolder` (whose text, when there is one, is `userCopy`):
// an entry of the user's own has Hidden= set or cleared in place, one
// installed for every user is hidden by a user copy, which goes again when
// it is switched back on unless the user changed more in it. Absent for
// what only an administrator may change.
std::optional<Change> change(const StartupItem& item, bool enable,
                             const std::string& userAutostartFolder,
                             const std::optional<std::string>& userCopy);

} // namespace loadwarden::LinuxStartup

// How Linux processes are found to be apps: appIDFromCgroup and isSystemService
// (/proc/PID/cgroup), DesktopEntries::parse, fileID and applicationFolders.
#include "core/grouping/linux/app_identity.h"
#include "core/grouping/linux/desktop_entry.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstdio>

namespace loadwarden {
namespace {

using fuzz::check;

// systemd's escaping of a unit name: every byte but [A-Za-z0-9:_.] as \xNN.
std::string escapedUnitName(std::string_view id) {
    std::string escaped;
    for (const char c : id) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == ':' || c == '_' || c == '.') {
            escaped += c;
        } else {
            char hex[5];
            std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(c));
            escaped += hex;
        }
    }
    return escaped;
}

// Any id the desktop may give an app comes back from each kind of unit it starts.
void checkAppUnits(std::string_view id) {
    if (id.empty()) {
        return;
    }
    const std::string unit = escapedUnitName(id);
    const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
    for (const std::string& cgroup : {slice + "app-gnome-" + unit + "-4521.scope\n",
                                      slice + "app-" + unit + "@0c1f2d.service\n",
                                      slice + "app-flatpak-" + unit + ".service\n"}) {
        check(appIDFromCgroup(cgroup) == id, "an app's unit gives back its id");
        check(!isSystemService(cgroup), "an app is no service of the system");
    }
}

void checkDesktopEntry(std::string_view text, std::string_view locale) {
    const auto untranslated = DesktopEntries::parse(text, "C");
    for (const std::string_view language : {locale, std::string_view("de_DE.UTF-8@euro")}) {
        const auto entry = DesktopEntries::parse(text, language);
        check(!entry || !entry->name.empty(), "an entry has a name");
        check(!untranslated || entry, "an entry is one in every language");
        check(!untranslated || entry->isApplication == untranslated->isApplication,
              "an entry is an app in every language or none");
    }
}

// Three lines, some perhaps empty.
void checkPaths(const std::vector<std::string_view>& lines) {
    for (const std::string_view path : lines) {
        if (const auto id = DesktopEntries::fileID(path)) {
            check(!id->empty() && id->find('/') == std::string::npos &&
                      id->size() + 8 == path.size(),
                  "an id is the path without folders and suffix");
        }
    }
    for (const std::string& folder :
         DesktopEntries::applicationFolders(lines[0], lines[1], lines[2])) {
        check(folder.starts_with('/') && folder.ends_with("/applications"),
              "applications folders are absolute");
    }
}

} // namespace

void fuzz::run(std::string_view text) {
    auto lines = leadingLines(text, 3);
    lines.resize(3); // missing lines are empty
    appIDFromCgroup(text);
    isSystemService(text);
    checkAppUnits(lines[0]);
    checkDesktopEntry(text, lines[0]);
    checkPaths(lines);
}

} // namespace loadwarden

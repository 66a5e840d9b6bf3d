#include "app/startup/linux/linux_startup_catalog.h"

#include "app/foundation/user_files.h"
#include "app/runner/spawn.h"
#include "core/startup/linux/linux_startup.h"
#include "core/startup/startup_text.h"
#include "core/text/text_parsing.h"

#include <map>
#include <set>
#include <system_error>

namespace loadwarden {

namespace {

namespace fs = std::filesystem;

// A link under another name is an alias of a unit listed under its own, or a
// mask (a link to /dev/null).
bool isAlias(const fs::path& path) {
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    return !error && target.filename() != path.filename();
}

// The units that a target's .wants or .requires folder links to.
std::set<std::string> wantedUnits(const std::vector<std::string>& folders) {
    std::set<std::string> wanted;
    for (const std::string& folder : folders) {
        for (const std::string_view kind : {".wants", ".requires"}) {
            for (const auto& [target, links] : filesIn(folder, kind)) {
                for (const auto& [unit, link] : filesIn(links, ".service")) {
                    wanted.insert(unit);
                }
            }
        }
    }
    return wanted;
}

std::optional<std::string> run(const std::vector<std::string>& arguments) {
    const std::string& tool = arguments.front();
    const auto path = Spawn::firstExecutableFile({"/usr/bin/" + tool, "/bin/" + tool});
    return switchingToolError(tool,
                              path ? Spawn::run(*path, {arguments.begin() + 1, arguments.end()},
                                                Spawn::shortToolTimeout, std::nullopt)
                                   : std::nullopt);
}

std::optional<std::string> write(const LinuxStartup::WriteFile& change) {
    if (const auto error = replaceFile(change.path, change.text)) {
        return "The autostart entry couldn’t be saved: " + *error;
    }
    return std::nullopt;
}

std::optional<std::string> remove(const LinuxStartup::RemoveFile& change) {
    std::error_code error;
    if (fs::remove(change.path, error) || !error) {
        return std::nullopt;
    }
    return "The autostart entry couldn’t be removed: " + error.message();
}

} // namespace

LinuxStartupFolders LinuxStartupFolders::forCurrentUser() {
    LinuxStartupFolders folders;
    const std::string_view configHome = environment("XDG_CONFIG_HOME");
    folders.configHome = configHome.starts_with('/')
                             ? std::string(configHome)
                             : std::string(environment("HOME")) + "/.config";
    for (const std::string_view dir : splitKeepingEmpty(environment("XDG_CONFIG_DIRS"), ':')) {
        if (dir.starts_with('/')) {
            folders.configDirs.emplace_back(dir);
        }
    }
    if (folders.configDirs.empty()) {
        folders.configDirs = {"/etc/xdg"};
    }
    folders.sharedUserUnits = {"/etc/systemd/user", "/usr/local/lib/systemd/user",
                               "/usr/lib/systemd/user"};
    folders.systemUnits = {"/etc/systemd/system", "/usr/local/lib/systemd/system",
                           "/usr/lib/systemd/system", "/lib/systemd/system"};
    folders.desktops = environment("XDG_CURRENT_DESKTOP");
    folders.locale = messagesLocale();
    return folders;
}

std::vector<StartupItem> LinuxStartupCatalog::items(const std::vector<LiveProcess>&) {
    std::vector<StartupItem> items;
    addAutostartEntries(items);
    addUnits(items);
    return items;
}

void LinuxStartupCatalog::addUnits(std::vector<StartupItem>& items) const {
    const std::string userUnits = folders_.configHome + "/systemd/user";
    std::vector<std::string> userFolders{userUnits};
    userFolders.insert(userFolders.end(), folders_.sharedUserUnits.begin(),
                       folders_.sharedUserUnits.end());
    struct Source {
        const std::vector<std::string>& folders;
        std::set<std::string> wanted;
    };
    for (const Source& source : {Source{userFolders, wantedUnits(userFolders)},
                                 Source{folders_.systemUnits, wantedUnits(folders_.systemUnits)}}) {
        const bool system = &source.folders == &folders_.systemUnits;
        std::set<std::string> seen; // the first folder to hold a unit wins
        for (const std::string& folder : source.folders) {
            const StartupScope scope = system                ? StartupScope::systemDaemon
                                       : folder == userUnits ? StartupScope::userAgent
                                                             : StartupScope::systemAgent;
            for (const auto& [name, path] : filesIn(folder, ".service")) {
                // Templates run only as named instances.
                if (name.find('@') != std::string::npos || isAlias(path) ||
                    !seen.insert(name).second) {
                    continue;
                }
                if (const auto text = fileText(path)) {
                    if (auto item = LinuxStartup::fromUnit(*text, path.string(), scope,
                                                           source.wanted.contains(name))) {
                        items.push_back(std::move(*item));
                    }
                }
            }
        }
    }
}

void LinuxStartupCatalog::addAutostartEntries(std::vector<StartupItem>& items) const {
    std::map<std::string, fs::path> shared;
    // The first folder of the list is the most important.
    for (auto dir = folders_.configDirs.rbegin(); dir != folders_.configDirs.rend(); ++dir) {
        for (auto& [name, path] : filesIn(*dir + "/autostart", ".desktop")) {
            shared[name] = path;
        }
    }
    const auto own = filesIn(userAutostartFolder(), ".desktop");
    const auto keep = [&items](std::optional<StartupItem> item) {
        if (item) {
            items.push_back(std::move(*item));
        }
    };
    const auto alone = [this](const fs::path& path, StartupScope scope) {
        const auto text = fileText(path);
        return text ? LinuxStartup::fromAutostart(*text, path.string(), scope, folders_.desktops,
                                                  folders_.locale)
                    : std::nullopt;
    };
    const auto read = [](const fs::path& path) {
        return LinuxStartup::AutostartFile{.path = path.string(), .text = fileText(path)};
    };
    for (const auto& [name, path] : own) {
        if (!shared.contains(name)) {
            keep(alone(path, StartupScope::userAgent));
        }
    }
    for (const auto& [name, path] : shared) {
        const auto copy = own.find(name);
        keep(copy == own.end()
                 ? alone(path, StartupScope::systemAgent)
                 : LinuxStartup::fromSharedAutostart(read(path), read(copy->second),
                                                     folders_.desktops, folders_.locale));
    }
}

std::string LinuxStartupCatalog::userAutostartFolder() const {
    return folders_.configHome + "/autostart";
}

// Whether there is a plan at all does not hang on what the user's copy says.
bool LinuxStartupCatalog::canChange(const StartupItem& item) const {
    return LinuxStartup::change(item, false, userAutostartFolder(), std::nullopt).has_value();
}

std::optional<std::string> LinuxStartupCatalog::setEnabled(const StartupItem& item, bool enabled) {
    const auto change = LinuxStartup::change(item, enabled, userAutostartFolder(),
                                             fileText(userAutostartFolder() + "/" + item.label));
    if (!change) {
        return StartupText::onlyAnAdministrator();
    }
    if (const auto* tool = std::get_if<LinuxStartup::RunTool>(&*change)) {
        return run(tool->arguments);
    }
    if (const auto* file = std::get_if<LinuxStartup::WriteFile>(&*change)) {
        return write(*file);
    }
    return remove(std::get<LinuxStartup::RemoveFile>(*change));
}

std::unique_ptr<StartupCatalog> makeStartupCatalog() {
    return std::make_unique<LinuxStartupCatalog>(LinuxStartupFolders::forCurrentUser());
}

} // namespace loadwarden

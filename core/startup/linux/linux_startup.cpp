#include "core/startup/linux/linux_startup.h"

#include "core/grouping/linux/desktop_entry.h"
#include "core/text/key_file.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <array>

namespace loadwarden::LinuxStartup {

namespace {

constexpr std::string_view entryName = "Desktop Entry";
constexpr std::string_view entryGroup = "[Desktop Entry]";
constexpr std::string_view hiddenLine = "Hidden=true";

std::string_view fileName(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// systemd restarts the service on its own after these.
bool restartsByItself(std::string_view restart) {
    constexpr std::array<std::string_view, 5> kept{"always", "on-failure", "on-abnormal",
                                                   "on-abort", "on-watchdog"};
    return std::ranges::find(kept, restart) != kept.end();
}

bool listed(std::string_view list, std::string_view name, char separator) {
    for (const std::string_view item : splitKeepingEmpty(list, separator)) {
        if (!item.empty() && item == name) {
            return true;
        }
    }
    return false;
}

bool meantForDesktop(const KeyFileGroup& entry, std::string_view desktops) {
    const auto anyListed = [desktops](std::string_view list) {
        for (const std::string_view desktop : splitKeepingEmpty(desktops, ':')) {
            if (listed(list, desktop, ';')) {
                return true;
            }
        }
        return false;
    };
    if (const auto only = lastValue(entry, "OnlyShowIn"); only && !anyListed(*only)) {
        return false;
    }
    const auto notShown = lastValue(entry, "NotShowIn");
    return !(notShown && anyListed(*notShown));
}

bool isSwitchedOff(const KeyFileGroup& entry) {
    return lastValue(entry, "Hidden") == "true" ||
           lastValue(entry, "X-GNOME-Autostart-enabled") == "false";
}

// The program of a command line: its first word, quotes removed.
std::string programOf(std::string_view commandLine) {
    commandLine = trimWhitespace(commandLine);
    if (!commandLine.empty() && (commandLine.front() == '"' || commandLine.front() == '\'')) {
        const char quote = commandLine.front();
        const auto end = commandLine.find(quote, 1);
        return std::string(commandLine.substr(1, end == std::string_view::npos ? end : end - 1));
    }
    return std::string(commandLine.substr(0, commandLine.find_first_of(" \t")));
}

// The entry's text with Hidden= set, or without it, all else kept.
std::string withHidden(std::string_view text, bool hidden) {
    std::string out;
    bool inEntry = false;
    bool written = false;
    forEachLine(text, [&](std::string_view line) {
        const std::string_view trimmed = trimWhitespace(line);
        if (trimmed.starts_with('[')) {
            inEntry = trimmed == entryGroup;
        } else if (inEntry && (trimmed.starts_with("Hidden=") ||
                               trimmed.starts_with("X-GNOME-Autostart-enabled="))) {
            return; // replaced below, or dropped
        }
        out.append(line);
        out += '\n';
        if (inEntry && hidden && !written) {
            out.append(hiddenLine);
            out += '\n';
            written = true;
        }
    });
    if (hidden && !written) {
        out.append(entryGroup).append("\n").append(hiddenLine).append("\n");
    }
    return out;
}

// An autostart entry from its [Desktop Entry] group.
std::optional<StartupItem> fromEntry(const KeyFileGroup& entry, const std::string& path,
                                     StartupScope scope, std::string_view desktops,
                                     std::string_view locale) {
    if (!meantForDesktop(entry, desktops)) {
        return std::nullopt;
    }
    std::string program = programOf(unescapedValue(lastValue(entry, "Exec").value_or("")));
    if (program.empty()) {
        return std::nullopt;
    }
    const std::string label(fileName(path));
    return StartupItem{
        .label = label,
        .name = DesktopEntries::localizedName(entry, locale)
                    .value_or(label.substr(0, label.rfind('.'))),
        .program = std::move(program),
        .plistPath = path,
        .scope = scope,
        .runAtLoad = true,
        .keepAlive = false,
        .interval = std::nullopt,
        .disabled = isSwitchedOff(entry),
    };
}

} // namespace

std::optional<StartupItem> fromUnit(std::string_view text, const std::string& path,
                                    StartupScope scope, bool enabled) {
    const KeyFileGroup install = keyFileGroup(text, "Install");
    if (!install.contains("WantedBy") && !install.contains("RequiredBy")) {
        return std::nullopt;
    }
    const KeyFileGroup unit = keyFileGroup(text, "Unit");
    const KeyFileGroup service = keyFileGroup(text, "Service");
    std::string_view command = lastValue(service, "ExecStart").value_or("");
    // Prefixes that change how systemd runs the command, not which one.
    command.remove_prefix(std::min(command.find_first_not_of("-@:+!"), command.size()));
    std::string program = programOf(command);
    if (program.empty()) {
        return std::nullopt;
    }
    const std::string label(fileName(path));
    std::string name(lastValue(unit, "Description").value_or(""));
    if (name.empty()) {
        name = label.substr(0, label.rfind('.'));
    }
    return StartupItem{.label = label,
                       .name = std::move(name),
                       .program = std::move(program),
                       .plistPath = path,
                       .scope = scope,
                       .runAtLoad = true,
                       .keepAlive = restartsByItself(lastValue(service, "Restart").value_or("")),
                       .interval = std::nullopt,
                       .disabled = !enabled};
}

std::optional<StartupItem> fromAutostart(std::string_view text, const std::string& path,
                                         StartupScope scope, std::string_view desktops,
                                         std::string_view locale) {
    return fromEntry(keyFileGroup(text, entryName), path, scope, desktops, locale);
}

std::optional<StartupItem> fromSharedAutostart(const AutostartFile& shared,
                                               const AutostartFile& userCopy,
                                               std::string_view desktops, std::string_view locale) {
    const KeyFileGroup copy = keyFileGroup(userCopy.text.value_or(""), entryName);
    if (copy.contains("Exec")) {
        return fromEntry(copy, userCopy.path, StartupScope::systemAgent, desktops, locale);
    }
    if (!shared.text) {
        return std::nullopt;
    }
    auto item =
        fromAutostart(*shared.text, shared.path, StartupScope::systemAgent, desktops, locale);
    if (item) {
        item->disabled = item->disabled || isSwitchedOff(copy);
    }
    return item;
}

std::optional<Change> change(const StartupItem& item, bool enable,
                             const std::string& userAutostartFolder,
                             const std::optional<std::string>& userCopy) {
    if (!item.isAutostartEntry()) {
        if (item.scope != StartupScope::userAgent) {
            return std::nullopt;
        }
        return RunTool{{"systemctl", "--user", enable ? "enable" : "disable", item.label}};
    }
    const std::string userPath = userAutostartFolder + "/" + item.label;
    switch (item.scope) {
    case StartupScope::userAgent: // the user's own entry: never deleted
        return WriteFile{userPath, withHidden(userCopy.value_or(""), !enable)};
    case StartupScope::systemAgent:
        if (!enable) {
            return WriteFile{userPath, withHidden(userCopy.value_or(""), true)};
        }
        if (!userCopy) {
            return std::nullopt; // the shared entry turns itself off
        }
        if (const std::string edited = withHidden(*userCopy, false);
            trimWhitespace(edited) != entryGroup) {
            return WriteFile{userPath, edited}; // the user changed more than that
        }
        return RemoveFile{userPath};
    case StartupScope::systemDaemon:
    case StartupScope::appLoginItem:
        break;
    }
    return std::nullopt;
}

} // namespace loadwarden::LinuxStartup

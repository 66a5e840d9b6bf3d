#include "core/grouping/linux/desktop_entry.h"

#include "core/text/key_file.h"
#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

constexpr std::string_view desktopSuffix = ".desktop";

// The Name[...] keys to try for a locale, best match first, ending with the
// untranslated Name: lang_COUNTRY@MODIFIER, lang_COUNTRY, lang@MODIFIER, lang.
std::vector<std::string> nameKeys(std::string_view locale) {
    std::string_view rest = locale;
    std::string_view modifier;
    if (const std::size_t at = rest.find('@'); at != std::string_view::npos) {
        modifier = rest.substr(at + 1);
        rest = rest.substr(0, at);
    }
    rest = rest.substr(0, rest.find('.')); // the encoding does not matter
    std::string_view country;
    if (const std::size_t underscore = rest.find('_'); underscore != std::string_view::npos) {
        country = rest.substr(underscore + 1);
        rest = rest.substr(0, underscore);
    }
    const std::string_view language = rest;

    std::vector<std::string> keys;
    const auto add = [&keys](std::string_view l, std::string_view c, std::string_view m) {
        std::string key = "Name[" + std::string(l);
        if (!c.empty()) {
            key += "_" + std::string(c);
        }
        if (!m.empty()) {
            key += "@" + std::string(m);
        }
        keys.push_back(key + "]");
    };
    if (!language.empty() && language != "C" && language != "POSIX") {
        if (!country.empty() && !modifier.empty()) {
            add(language, country, modifier);
        }
        if (!country.empty()) {
            add(language, country, {});
        }
        if (!modifier.empty()) {
            add(language, {}, modifier);
        }
        add(language, {}, {});
    }
    keys.emplace_back("Name");
    return keys;
}

} // namespace

std::optional<std::string> DesktopEntries::localizedName(const KeyFileGroup& entry,
                                                         std::string_view locale) {
    // An empty translation leaves the name to a broader one.
    for (const std::string& key : nameKeys(locale)) {
        if (const auto name = lastValue(entry, key); name && !name->empty()) {
            return unescapedValue(*name);
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::parse(std::string_view text, std::string_view locale) {
    const KeyFileGroup entry = keyFileGroup(text, "Desktop Entry");
    auto name = localizedName(entry, locale);
    if (!name || lastValue(entry, "Hidden") == "true") {
        return std::nullopt;
    }
    return DesktopEntry{.name = std::move(*name),
                        .isApplication = lastValue(entry, "Type") == "Application" &&
                                         lastValue(entry, "NoDisplay") != "true",
                        .icon = unescapedValue(lastValue(entry, "Icon").value_or(""))};
}

std::optional<std::string> DesktopEntries::fileID(std::string_view relativePath) {
    if (!relativePath.ends_with(desktopSuffix) || relativePath.size() == desktopSuffix.size()) {
        return std::nullopt;
    }
    std::string id(relativePath.substr(0, relativePath.size() - desktopSuffix.size()));
    for (char& c : id) {
        c = c == '/' ? '-' : c;
    }
    return id;
}

std::vector<std::string> DesktopEntries::applicationFolders(std::string_view dataHome,
                                                            std::string_view dataDirs,
                                                            std::string_view home) {
    const auto isAbsolute = [](std::string_view path) { return path.starts_with('/'); };
    const auto applications = [](std::string_view folder) {
        std::string path(folder);
        if (!path.ends_with('/')) {
            path += '/';
        }
        return path + "applications";
    };
    std::vector<std::string> folders;
    if (isAbsolute(dataHome)) {
        folders.push_back(applications(dataHome));
    } else if (isAbsolute(home)) {
        folders.push_back(applications(std::string(home) + "/.local/share"));
    }
    std::vector<std::string_view> systemFolders;
    for (const std::string_view folder : splitKeepingEmpty(dataDirs, ':')) {
        if (isAbsolute(folder)) {
            systemFolders.push_back(folder);
        }
    }
    if (systemFolders.empty()) {
        systemFolders = {"/usr/local/share", "/usr/share"};
    }
    for (const std::string_view folder : systemFolders) {
        folders.push_back(applications(folder));
    }
    return folders;
}

AppNames DesktopEntries::appNames(const std::vector<LiveProcess>& processes,
                                  const std::unordered_map<std::string, DesktopEntry>& entries) {
    std::unordered_map<std::int32_t, std::string_view> appIDByPID;
    for (const LiveProcess& process : processes) {
        appIDByPID.emplace(process.record.pid, process.record.appID);
    }
    AppNames names;
    for (const LiveProcess& process : processes) {
        const ProcessRecord& record = process.record;
        if (record.appID.empty()) {
            continue;
        }
        const auto entry = entries.find(record.appID);
        if (entry == entries.end() || !entry->second.isApplication) {
            continue;
        }
        const auto parent = appIDByPID.find(record.ppid);
        if (parent == appIDByPID.end() || parent->second != record.appID) {
            names.emplace(record.pid, entry->second.name);
        }
    }
    return names;
}

} // namespace loadwarden

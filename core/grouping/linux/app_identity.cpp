#include "core/grouping/linux/app_identity.h"

#include "core/text/text_parsing.h"

#include <optional>

namespace loadwarden {

namespace {

// The unified hierarchy's line, or the systemd line of a legacy hierarchy.
std::string_view unitPath(std::string_view cgroup) {
    std::string_view path;
    forEachLine(cgroup, [&path](std::string_view line) {
        for (const std::string_view prefix : {"0::", "1:name=systemd:"}) {
            if (path.empty() && line.substr(0, prefix.size()) == prefix) {
                path = line.substr(prefix.size());
            }
        }
    });
    return path;
}

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::optional<int> hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return std::nullopt;
}

// Undoes systemd's \xNN escapes.
std::string unescape(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x') {
            const auto high = hexDigit(text[i + 2]);
            const auto low = hexDigit(text[i + 3]);
            if (high && low) {
                plain.push_back(static_cast<char>(*high * 16 + *low));
                i += 3;
                continue;
            }
        }
        plain.push_back(text[i]);
    }
    return plain;
}

// "[<launcher>-]<AppID>": the id is what follows the last unescaped dash.
std::string appIDFromUnit(std::string_view unit) {
    constexpr std::string_view prefix = "app-";
    if (unit.substr(0, prefix.size()) != prefix) {
        return {};
    }
    std::string_view body;
    if (endsWith(unit, ".service")) {
        body = unit.substr(prefix.size(), unit.size() - prefix.size() - 8);
        body = body.substr(0, body.find('@'));
    } else if (endsWith(unit, ".scope")) {
        body = unit.substr(prefix.size(), unit.size() - prefix.size() - 6);
        const std::size_t random = body.rfind('-');
        if (random == std::string_view::npos) {
            return {};
        }
        body = body.substr(0, random);
    } else {
        return {};
    }
    const std::size_t launcher = body.rfind('-');
    if (launcher != std::string_view::npos) {
        body = body.substr(launcher + 1);
    }
    return unescape(body);
}

} // namespace

std::string appIDFromCgroup(std::string_view cgroup) {
    const auto units = splitKeepingEmpty(trimWhitespace(unitPath(cgroup)), '/');
    // Units nest under slices, so the app's own unit is the innermost match.
    for (auto unit = units.rbegin(); unit != units.rend(); ++unit) {
        std::string id = appIDFromUnit(*unit);
        if (!id.empty()) {
            return id;
        }
    }
    return {};
}

bool isSystemService(std::string_view cgroup) {
    return trimWhitespace(unitPath(cgroup)).starts_with("/system.slice/");
}

} // namespace loadwarden

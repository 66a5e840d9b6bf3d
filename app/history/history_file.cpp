#include "app/history/history_file.h"

#include "app/foundation/user_files.h"

#include <QStandardPaths>
#include <filesystem>
#include <system_error>

namespace loadwarden {

HistoryFile::HistoryFile()
    : path_(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                .append("/Loadwarden/history.json")
                .toStdString()) {}

Loaded<UsageHistory> HistoryFile::load(Date now, const Calendar& calendar) const {
    std::error_code error;
    if (!std::filesystem::exists(path_, error)) {
        return {};
    }
    auto history = decodeHistory(fileText(path_).value_or(""));
    if (!history) {
        // Were it not moved, its folder takes no new file either, so no save
        // overwrites it.
        const auto kept = keepAside(path_, now);
        return {.value = {},
                .note = "App history couldn’t be read, so it starts empty" +
                        (kept ? "; the unreadable file is kept as " + kept->string() : "") + "."};
    }
    history->prune(now, UsageHistory::keptDays, calendar);
    return {.value = *std::move(history)};
}

std::optional<std::string> HistoryFile::save(const UsageHistory& history) const {
    return replaceFile(path_, encodeHistory(history));
}

} // namespace loadwarden

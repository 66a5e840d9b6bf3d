#include "app/history/history_file.h"

#include "app/foundation/user_files.h"

#include <QStandardPaths>

namespace loadwarden {

HistoryFile::HistoryFile()
    : path_(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                .append("/Loadwarden/history.json")
                .toStdString()) {}

UsageHistory HistoryFile::load(Date now, const Calendar& calendar) const {
    const auto text = fileText(path_);
    if (!text) {
        return {};
    }
    UsageHistory history = decodeHistory(*text).value_or(UsageHistory{});
    history.prune(now, UsageHistory::keptDays, calendar);
    return history;
}

std::optional<std::string> HistoryFile::save(const UsageHistory& history) const {
    return replaceFile(path_, encodeHistory(history));
}

} // namespace loadwarden

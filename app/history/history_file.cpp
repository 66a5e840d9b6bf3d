#include "app/history/history_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace loadwarden {

HistoryFile::HistoryFile()
    : path_(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                .append("/Loadwarden/history.json")
                .toStdString()) {}

UsageHistory HistoryFile::load(Date now, const Calendar& calendar) const {
    QFile file(QString::fromStdString(path_));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray text = file.readAll();
    UsageHistory history =
        decodeHistory(std::string_view(text.constData(), static_cast<std::size_t>(text.size())))
            .value_or(UsageHistory{});
    history.prune(now, UsageHistory::keptDays, calendar);
    return history;
}

std::optional<std::string> HistoryFile::save(const UsageHistory& history) const {
    const QString path = QString::fromStdString(path_);
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        return "the folder " + folder.toStdString() + " could not be made";
    }
    // Encoded first, so that the file is open no longer than the write.
    const std::string text = encodeHistory(history);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString().toStdString();
    }
    file.write(text.data(), static_cast<qint64>(text.size()));
    if (!file.commit()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

} // namespace loadwarden

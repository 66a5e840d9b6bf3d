#include "app/foundation/user_files.h"

#include "core/foundation/kept_aside.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

namespace loadwarden {

std::optional<std::string> fileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << file.rdbuf();
    return file.bad() ? std::nullopt : std::optional(text.str());
}

std::map<std::string, std::filesystem::path> filesIn(const std::filesystem::path& folder,
                                                     std::string_view suffix) {
    std::map<std::string, std::filesystem::path> files;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.ends_with(suffix)) {
            files.emplace(name, entry->path());
        }
    }
    return files;
}

std::optional<std::string> replaceFile(const std::filesystem::path& path, std::string_view text) {
    const QString name = QString::fromStdString(path.string());
    const QString folder = QFileInfo(name).absolutePath();
    if (!QDir().mkpath(folder)) {
        return "the folder " + folder.toStdString() + " could not be made";
    }
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString().toStdString();
    }
    // Written out before the commit, which would otherwise overlook a write
    // refused when its buffer is flushed (a full disk) and put the file in
    // place cut short.
    if (file.write(text.data(), static_cast<qint64>(text.size())) !=
            static_cast<qint64>(text.size()) ||
        !file.flush()) {
        const std::string error = file.errorString().toStdString();
        file.cancelWriting();
        return error;
    }
    if (!file.commit()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> keepAside(const std::filesystem::path& file, Date date) {
    const std::filesystem::path folder = file.parent_path();
    std::vector<std::string> names;
    for (const auto& [name, path] : filesIn(folder, "")) {
        names.push_back(name);
    }
    const KeptAside::Plan plan = KeptAside::file(file.filename().string()).plan(date, names);
    std::error_code error;
    std::filesystem::rename(file, folder / plan.name, error);
    if (error) {
        return std::nullopt;
    }
    for (const std::string& name : plan.dropped) {
        std::filesystem::remove(folder / name, error);
    }
    return folder / plan.name;
}

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const std::string_view value = environment(name); !value.empty()) {
            return std::string(value);
        }
    }
    return {};
}

} // namespace loadwarden

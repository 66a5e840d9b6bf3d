#include "app/control/reopening.h"

#include "app/foundation/user_files.h"

#include <filesystem>
#include <system_error>

namespace loadwarden {

std::optional<Reopening> reopeningOf(const ProcessGroup& group) {
    const std::string process = "/proc/" + std::to_string(group.leader.record.pid);
    const auto commandLine = fileText(process + "/cmdline");
    if (!commandLine || commandLine->empty()) {
        return std::nullopt; // gone, or a kernel thread
    }
    std::vector<std::string> words;
    for (std::size_t start = 0; start < commandLine->size();) {
        const std::size_t end = std::min(commandLine->find('\0', start), commandLine->size());
        words.emplace_back(commandLine->substr(start, end - start));
        start = end + 1;
    }
    std::error_code unreadable;
    const std::filesystem::path folder =
        std::filesystem::read_symlink(process + "/cwd", unreadable);
    const std::string& path = group.leader.record.path;
    return Reopening{.program = path.empty() ? words.front() : path,
                     .arguments = {words.begin() + 1, words.end()},
                     .folder = unreadable ? "" : folder.string()};
}

} // namespace loadwarden

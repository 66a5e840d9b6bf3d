#include "app/sampling/linux/process_descriptors.h"

#include "app/sampling/linux/kernel_files.h"
#include "core/text/text_parsing.h"

#include <array>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace loadwarden {

namespace {

// A descriptor's link reads "socket:[INODE]" for a socket.
std::optional<std::uint64_t> socketInode(std::string_view target) {
    constexpr std::string_view prefix = "socket:[";
    if (!target.starts_with(prefix) || !target.ends_with(']')) {
        return std::nullopt;
    }
    return parseInteger<std::uint64_t>(
        target.substr(prefix.size(), target.size() - prefix.size() - 1));
}

} // namespace

std::optional<ProcessDescriptors> readProcessDescriptors(std::int32_t pid) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(
        opendir(KernelFiles::processFile(pid, "fd").c_str()), closedir);
    if (!folder) {
        return std::nullopt;
    }
    ProcessDescriptors found;
    // Long enough for any socket's link; other links may be cut short.
    std::array<char, 64> target{};
    while (true) {
        errno = 0;
        const dirent* entry = readdir(folder.get());
        if (!entry) {
            // A folder that stops part way belongs to a process that ended.
            return errno == 0 ? std::optional(std::move(found)) : std::nullopt;
        }
        if (entry->d_name[0] == '.') {
            continue;
        }
        ++found.files;
        // A descriptor closed meanwhile has no link: it is simply not a socket.
        const ssize_t length =
            readlinkat(dirfd(folder.get()), entry->d_name, target.data(), target.size());
        if (length <= 0) {
            continue;
        }
        if (const auto inode = socketInode({target.data(), static_cast<std::size_t>(length)})) {
            found.sockets.push_back(*inode);
        }
    }
}

} // namespace loadwarden

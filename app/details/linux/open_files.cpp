#include "app/details/open_files.h"

#include "app/sampling/linux/kernel_files.h"
#include "core/network/linux/listening_sockets.h"
#include "core/text/text_parsing.h"

#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace loadwarden {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view socketPrefix = "socket:[";

std::optional<std::uint64_t> socketInode(const std::string& descriptor) {
    const std::optional<std::string> target = KernelFiles::linkTarget(descriptor);
    if (!target || !target->starts_with(socketPrefix) || !target->ends_with(']')) {
        return std::nullopt;
    }
    return parseInteger<std::uint64_t>(std::string_view(*target).substr(
        socketPrefix.size(), target->size() - socketPrefix.size() - 1));
}

} // namespace

std::optional<FileInfo> openFiles(std::int32_t pid) {
    // Walked rather than listed, so that a folder that cannot be read (another
    // user's process, or one gone) tells apart from an empty one.
    std::error_code error;
    auto descriptors = fs::directory_iterator(KernelFiles::processFile(pid, "fd"), error);
    if (error) {
        return std::nullopt;
    }
    FileInfo info;
    std::set<std::uint64_t> sockets;
    for (; descriptors != fs::directory_iterator(); descriptors.increment(error)) {
        if (error) {
            return std::nullopt;
        }
        ++info.files;
        if (const auto inode = socketInode(descriptors->path())) {
            sockets.insert(*inode);
        }
    }
    if (sockets.empty()) {
        return info;
    }
    // The process's own network namespace, as its tables show it.
    std::set<std::uint16_t> ports;
    for (const auto& [table, datagram] :
         {std::pair{"net/tcp", false}, std::pair{"net/tcp6", false}, std::pair{"net/udp", true},
          std::pair{"net/udp6", true}}) {
        const auto text = KernelFiles::text(KernelFiles::processFile(pid, table));
        for (const auto& [inode, port] :
             ListeningSockets::parse(text.value_or(std::string()), datagram)) {
            if (sockets.contains(inode)) {
                ports.insert(port);
            }
        }
    }
    info.ports.assign(ports.begin(), ports.end());
    return info;
}

} // namespace loadwarden

#include "app/details/open_files.h"

#include "app/foundation/user_files.h"
#include "core/network/linux/listening_sockets.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace loadwarden {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view socketPrefix = "socket:[";

std::optional<std::uint64_t> socketInode(const fs::path& descriptor) {
    std::error_code error;
    const std::string target = fs::read_symlink(descriptor, error).string();
    if (error || !target.starts_with(socketPrefix) || !target.ends_with(']')) {
        return std::nullopt;
    }
    try {
        return std::stoull(target.substr(socketPrefix.size()));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<FileInfo> openFiles(std::int32_t pid) {
    const fs::path process = "/proc/" + std::to_string(pid);
    std::error_code error;
    auto descriptors = fs::directory_iterator(process / "fd", error);
    if (error) {
        return std::nullopt; // another user's, or gone
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
    // The process's own network namespace, as its tables show it.
    std::set<std::uint16_t> ports;
    for (const auto& [table, datagram] : {std::pair{"tcp", false}, std::pair{"tcp6", false},
                                          std::pair{"udp", true}, std::pair{"udp6", true}}) {
        const auto text = fileText(process / "net" / table);
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

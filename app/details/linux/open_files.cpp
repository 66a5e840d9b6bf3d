#include "app/details/open_files.h"

#include "app/sampling/linux/kernel_files.h"
#include "app/sampling/linux/process_descriptors.h"
#include "core/network/linux/listening_sockets.h"

#include <set>
#include <string>

namespace loadwarden {

std::optional<FileInfo> openFiles(std::int32_t pid) {
    const auto descriptors = readProcessDescriptors(pid);
    if (!descriptors) {
        return std::nullopt;
    }
    FileInfo info{.files = descriptors->files};
    const std::set<std::uint64_t> sockets(descriptors->sockets.begin(), descriptors->sockets.end());
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

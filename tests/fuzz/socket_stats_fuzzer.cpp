// ss output: SocketStats::parse, and its sockets through TcpSocketLedger::record.
#include "core/network/linux/socket_stats.h"
#include "core/network/linux/tcp_socket_ledger.h"
#include "tests/fuzz/fuzz_support.h"

#include <algorithm>
#include <string>

namespace loadwarden {
namespace {

using fuzz::check;

bool isAddress(std::string_view address) {
    return !address.empty() && address.find(' ') == std::string_view::npos;
}

// Owners for small inodes, which mutations reach easily, and for the seed's:
// a few processes, some sharing a socket, one pid under two names.
SocketOwnersByInode makeOwners() {
    SocketOwnersByInode owners;
    const auto add = [&owners](std::uint64_t inode) {
        const auto pid = static_cast<std::int32_t>(inode % 5 + 1);
        owners[inode] = {{pid, "p" + std::to_string(inode % 3)}};
        if (inode % 4 == 0) {
            owners[inode].push_back({pid + 1, "shared"});
        }
    };
    for (std::uint64_t inode = 0; inode < 64; ++inode) {
        add(inode);
    }
    for (std::uint64_t inode = 310460; inode < 310470; ++inode) {
        add(inode);
    }
    return owners;
}

std::vector<SocketBytes> parsed(std::string_view output) {
    static const SocketOwnersByInode owners = makeOwners();
    std::vector<SocketBytes> sockets = SocketStats::parse(output, owners);
    for (const SocketBytes& socket : sockets) {
        check(!socket.owners.empty(), "a socket has an owner");
        check(isAddress(socket.local) && isAddress(socket.peer), "addresses are single words");
    }
    return sockets;
}

bool isOwnedIn(std::int32_t pid, const std::vector<SocketBytes>& sockets) {
    return std::any_of(sockets.begin(), sockets.end(), [pid](const SocketBytes& socket) {
        return std::any_of(socket.owners.begin(), socket.owners.end(),
                           [pid](const SocketOwner& owner) { return owner.pid == pid; });
    });
}

} // namespace

void fuzz::run(std::string_view text) {
    const auto [first, second] = halves(text);
    const auto earlier = parsed(first);
    const auto later = parsed(second);

    TcpSocketLedger ledger;
    const NetworkSample before = ledger.record(earlier);
    const NetworkSample after = ledger.record(later);
    check(ledger.record(later) == after, "a listing seen again adds nothing");
    for (const auto& [pid, bytes] : after) {
        check(bytes.pid == pid && isOwnedIn(pid, later),
              "a process counts while it holds a socket");
        const auto previous = before.find(pid);
        if (previous != before.end() && previous->second.name == bytes.name) {
            check(bytes.bytesIn >= previous->second.bytesIn &&
                      bytes.bytesOut >= previous->second.bytesOut,
                  "a process's counters never go down");
        }
    }
}

} // namespace loadwarden

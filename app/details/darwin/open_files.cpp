#include "app/details/open_files.h"

#include <arpa/inet.h>
#include <libproc.h>
#include <netinet/in.h>
#include <set>
#include <sys/proc_info.h>
#include <vector>

namespace loadwarden {

std::optional<FileInfo> openFiles(std::int32_t pid) {
    const int bytes = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, nullptr, 0);
    if (bytes <= 0) {
        return std::nullopt; // another user's, or gone
    }
    std::vector<proc_fdinfo> descriptors(static_cast<std::size_t>(bytes) / sizeof(proc_fdinfo));
    const int filled = proc_pidinfo(pid, PROC_PIDLISTFDS, 0, descriptors.data(),
                                    static_cast<int>(descriptors.size() * sizeof(proc_fdinfo)));
    if (filled <= 0) {
        return std::nullopt;
    }
    descriptors.resize(static_cast<std::size_t>(filled) / sizeof(proc_fdinfo));
    FileInfo info{.files = static_cast<int>(descriptors.size()), .ports = {}};
    std::set<std::uint16_t> ports;
    for (const proc_fdinfo& descriptor : descriptors) {
        if (descriptor.proc_fdtype != PROX_FDTYPE_SOCKET) {
            continue;
        }
        socket_fdinfo socket{};
        if (proc_pidfdinfo(pid, descriptor.proc_fd, PROC_PIDFDSOCKETINFO, &socket,
                           sizeof socket) != sizeof socket) {
            continue;
        }
        const socket_info& about = socket.psi;
        if (about.soi_kind == SOCKINFO_TCP &&
            about.soi_proto.pri_tcp.tcpsi_state == TSI_S_LISTEN) {
            ports.insert(ntohs(static_cast<std::uint16_t>(
                about.soi_proto.pri_tcp.tcpsi_ini.insi_lport)));
        } else if (about.soi_kind == SOCKINFO_IN && about.soi_protocol == IPPROTO_UDP &&
                   about.soi_proto.pri_in.insi_lport != 0) {
            ports.insert(ntohs(static_cast<std::uint16_t>(about.soi_proto.pri_in.insi_lport)));
        }
    }
    info.ports.assign(ports.begin(), ports.end());
    return info;
}

} // namespace loadwarden

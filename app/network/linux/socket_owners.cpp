#include "app/network/linux/socket_owners.h"

#include "app/sampling/linux/kernel_files.h"
#include "app/sampling/linux/process_clock.h"
#include "app/sampling/linux/process_descriptors.h"
#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace loadwarden {

namespace {

// This process's own sockets, from its descriptors themselves, one fstat
// each: it always runs, and through /proc each of the thousands of files the
// sampler keeps open would cost a path lookup on every run. The table's size
// bounds the descriptors in use.
std::vector<std::uint64_t> ownSockets() {
    const auto status = KernelFiles::text("/proc/self/status");
    const int slots = status ? parseInteger<int>(keyedValue(*status, "FDSize")).value_or(0) : 0;
    std::vector<std::uint64_t> sockets;
    for (int descriptor = 0; descriptor < slots; ++descriptor) {
        struct stat file {};
        if (fstat(descriptor, &file) == 0 && S_ISSOCK(file.st_mode)) {
            sockets.push_back(file.st_ino);
        }
    }
    return sockets;
}

} // namespace

const SocketOwnersByInode& SocketOwners::find() {
    ++listing_;
    owners_.clear();
    for (const auto& [pid, folder] : directory_.processes()) {
        const auto cpuTime = processCPUTimeNs(pid);
        if (!cpuTime) {
            continue; // it has ended since the listing
        }
        Process& process = processes_[pid];
        if (process.listing == 0 || process.folder != folder || process.cpuTimeNs != *cpuTime) {
            process = read(pid, folder, *cpuTime);
        }
        process.listing = listing_;
        for (const std::uint64_t inode : process.sockets) {
            owners_[inode].push_back({.pid = pid, .name = process.name});
        }
    }
    std::erase_if(processes_,
                  [this](const auto& entry) { return entry.second.listing != listing_; });
    return owners_;
}

SocketOwners::Process SocketOwners::read(int pid, std::uint64_t folder, std::uint64_t cpuTimeNs) {
    Process process{.folder = folder, .cpuTimeNs = cpuTimeNs};
    std::vector<std::uint64_t> sockets;
    if (pid == getpid()) {
        sockets = ownSockets();
    } else if (auto descriptors = readProcessDescriptors(pid)) {
        sockets = std::move(descriptors->sockets);
    } // another user's descriptors are closed to us: it holds nothing we can tell
    if (sockets.empty()) {
        return process;
    }
    // Its short name, as its stat gives it; none once it has ended.
    const auto comm = KernelFiles::text(KernelFiles::processFile(pid, "comm"));
    if (!comm) {
        return process;
    }
    process.name = comm->substr(0, comm->find('\n'));
    process.sockets = std::move(sockets);
    std::sort(process.sockets.begin(), process.sockets.end());
    process.sockets.erase(std::unique(process.sockets.begin(), process.sockets.end()),
                          process.sockets.end());
    return process;
}

} // namespace loadwarden

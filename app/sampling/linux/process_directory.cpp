#include "app/sampling/linux/process_directory.h"

#include "core/text/text_parsing.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace loadwarden {

namespace {

// Room for a few thousand entries per call; /proc gives about 24 bytes each.
constexpr std::size_t entriesBufferSize = 64 * 1024;

} // namespace

ProcessDirectory::ProcessDirectory()
    : fd_(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), entries_(entriesBufferSize) {}

ProcessDirectory::~ProcessDirectory() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

const std::vector<ProcessDirectory::Entry>& ProcessDirectory::processes() {
    processes_.clear();
    if (fd_ < 0 || ::lseek(fd_, 0, SEEK_SET) != 0) {
        return processes_;
    }
    while (true) {
        const ssize_t got = ::getdents64(fd_, entries_.data(), entries_.size());
        if (got <= 0) {
            break;
        }
        for (std::size_t offset = 0; offset < static_cast<std::size_t>(got);) {
            dirent64 entry;
            std::memcpy(&entry, entries_.data() + offset, offsetof(dirent64, d_name));
            const char* name = entries_.data() + offset + offsetof(dirent64, d_name);
            if (const auto pid = parseInteger<int>(name); pid && *pid > 0) {
                processes_.push_back({.pid = *pid, .inode = entry.d_ino});
            }
            offset += entry.d_reclen;
        }
    }
    return processes_;
}

std::optional<std::uint32_t> ProcessDirectory::owner(int pid) const {
    std::array<char, 16> name{};
    std::to_chars(name.data(), name.data() + name.size() - 1, pid);
    struct stat status {};
    if (::fstatat(fd_, name.data(), &status, 0) != 0) {
        return std::nullopt;
    }
    return status.st_uid;
}

} // namespace loadwarden

#include "app/sampling/linux/kernel_files.h"

#include "core/text/text_parsing.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace loadwarden {

namespace {

constexpr std::size_t readChunk = 4096;

// Reads up to `limit` bytes from the start of an open file onto the end of `into`.
bool readFromStart(int fd, std::string& into, std::size_t limit) {
    std::size_t offset = 0;
    while (limit > 0) {
        const std::size_t start = into.size();
        const std::size_t wanted = std::min(limit, readChunk);
        into.resize(start + wanted);
        const ssize_t got = ::pread(fd, into.data() + start, wanted, static_cast<off_t>(offset));
        into.resize(start + static_cast<std::size_t>(got > 0 ? got : 0));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return got == 0;
        }
        offset += static_cast<std::size_t>(got);
        limit -= static_cast<std::size_t>(got);
    }
    return true;
}

int openForReading(const std::string& path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

template <typename Visit>
void forEachEntry(const std::string& directory, Visit&& visit) {
    DIR* stream = ::opendir(directory.c_str());
    if (stream == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            visit(name);
        }
    }
    ::closedir(stream);
}

} // namespace

bool KernelFiles::read(const std::string& path, std::string& into) {
    KeptFile file;
    return file.read(path, into, false);
}

std::optional<std::string> KernelFiles::text(const std::string& path) {
    std::string contents;
    if (!read(path, contents)) {
        return std::nullopt;
    }
    return contents;
}

std::optional<std::string> KernelFiles::head(const std::string& path, std::size_t count) {
    const int fd = openForReading(path);
    if (fd < 0) {
        return std::nullopt;
    }
    std::string contents;
    const bool read = readFromStart(fd, contents, count);
    ::close(fd);
    if (!read) {
        return std::nullopt;
    }
    return contents;
}

std::optional<std::string> KernelFiles::linkTarget(const std::string& path) {
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0 || static_cast<std::size_t>(length) >= target.size()) {
        return std::nullopt;
    }
    target.resize(static_cast<std::size_t>(length));
    return target;
}

std::optional<std::uint32_t> KernelFiles::owner(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status.st_uid;
}

std::vector<std::string> KernelFiles::entries(const std::string& directory) {
    std::vector<std::string> names;
    forEachEntry(directory, [&names](std::string_view name) { names.emplace_back(name); });
    return names;
}

std::vector<std::string> KernelFiles::entriesStartingWith(const std::string& directory,
                                                          const std::string& prefix) {
    std::vector<std::string> paths;
    forEachEntry(directory, [&](std::string_view name) {
        if (name.starts_with(prefix)) {
            paths.push_back(directory + "/" + std::string(name));
        }
    });
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string KernelFiles::processFile(int pid, std::string_view name) {
    return "/proc/" + std::to_string(pid) + "/" + std::string(name);
}

std::vector<int> KernelFiles::processIDs() {
    std::vector<int> pids;
    forEachEntry("/proc", [&pids](std::string_view name) {
        if (const auto pid = parseInteger<int>(name); pid && *pid > 0) {
            pids.push_back(*pid);
        }
    });
    return pids;
}

KeptFile::~KeptFile() {
    close();
}

KeptFile::KeptFile(KeptFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

KeptFile& KeptFile::operator=(KeptFile&& other) noexcept {
    if (this != &other) {
        close();
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

bool KeptFile::read(const std::string& path, std::string& into, bool keep) {
    into.clear();
    if (fd_ >= 0 && readFromStart(fd_, into, std::string::npos) && !into.empty()) {
        return true;
    }
    close();
    into.clear();
    fd_ = openForReading(path);
    const bool read = fd_ >= 0 && readFromStart(fd_, into, std::string::npos);
    if (!read || !keep) {
        close();
    }
    return read;
}

void KeptFile::close() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

} // namespace loadwarden
